#include "ZRMPlatform/Linux/ZRMLinuxFileReader.h"

#include <cerrno>
#include <climits>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"

namespace {

class LinuxFileReader final : public ZRMFileReader {
  public:
    LinuxFileReader(ZRMLinuxDescriptor file, std::string path)
        : file_(std::move(file)), path_(std::move(path)) {}

    ZRMResult<std::size_t> read(std::span<std::uint8_t> buffer) override {
        for (;;) {
            const auto count = ::read(file_.number(), buffer.data(), buffer.size());
            if (count >= 0) {
                return static_cast<std::size_t>(count);
            }
            if (errno != EINTR) {
                return zrm_posixError(errno, path_);
            }
        }
    }

  private:
    ZRMLinuxDescriptor file_;
    std::string path_;
};

// A path as the system takes it: relative to a directory that is open, if one is.
struct ShortPath {
    ZRMLinuxDescriptor directory;
    std::string rest;
    [[nodiscard]] int base() const { return directory.isOpen() ? directory.number() : AT_FDCWD; }
};

// Opens directories on the way until the rest is short enough; 0 or an `errno` value.
int shorten(ShortPath& path) {
    while (path.rest.size() >= PATH_MAX) {
        const auto slash = path.rest.rfind('/', PATH_MAX - 2);
        if (slash == std::string::npos || slash == 0) {
            return ENAMETOOLONG;
        }
        const auto piece = path.rest.substr(0, slash);
        ZRMLinuxDescriptor next(
            ::openat(path.base(), piece.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (!next.isOpen()) {
            return errno;
        }
        const auto name = path.rest.find_first_not_of('/', slash);
        path = {std::move(next), name == std::string::npos ? "." : path.rest.substr(name)};
    }
    return 0;
}

int kindError(const struct stat& status) {
    if (S_ISREG(status.st_mode)) {
        return 0;
    }
    return S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
}

}  // namespace

ZRMResult<std::unique_ptr<ZRMFileReader>> zrm_openLinuxFileReader(const std::string& path) {
    ShortPath shortPath{ZRMLinuxDescriptor(), path};
    if (const int failure = shorten(shortPath)) {
        return zrm_posixError(failure, path);
    }
    struct stat status {};
    if (::fstatat(shortPath.base(), shortPath.rest.c_str(), &status, 0) != 0) {
        return zrm_posixError(errno, path);
    }
    if (const int failure = kindError(status)) {
        return zrm_posixError(failure, path);
    }
    // Another item may stand there by now: neither a fifo nor a terminal may catch the caller.
    ZRMLinuxDescriptor file(::openat(shortPath.base(), shortPath.rest.c_str(),
                                     O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen() || ::fstat(file.number(), &status) != 0) {
        return zrm_posixError(errno, path);
    }
    if (const int failure = kindError(status)) {
        return zrm_posixError(failure, path);
    }
    return std::unique_ptr<ZRMFileReader>(std::make_unique<LinuxFileReader>(std::move(file), path));
}
