#include "ZRMPlatform/Linux/ZRMLinuxDirectoryEnumerator.h"

#include <cerrno>
#include <string_view>
#include <utility>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"

namespace {

constexpr int kOpenDirectory = O_RDONLY | O_DIRECTORY | O_NONBLOCK | O_CLOEXEC;

struct StreamCloser {
    void operator()(DIR* stream) const { ::closedir(stream); }
};
using Stream = std::unique_ptr<DIR, StreamCloser>;

// A directory on the way down.
struct Level {
    Stream stream;      // none while it is closed
    long position = 0;  // where to go on once it is open again
    dev_t device = 0;
    ino_t number = 0;
    std::size_t pathLength = 0;  // of the path up to here
};

// Takes the descriptor; none, and `errno`, when it is no directory that can be listed.
Stream streamOf(int descriptor) {
    if (descriptor < 0) {
        return nullptr;
    }
    DIR* const stream = ::fdopendir(descriptor);
    if (stream == nullptr) {
        const int failure = errno;
        ::close(descriptor);
        errno = failure;
    }
    return Stream(stream);
}

bool identify(Level& level) {
    struct stat status {};
    if (!level.stream || ::fstat(::dirfd(level.stream.get()), &status) != 0) {
        return false;
    }
    level.device = status.st_dev;
    level.number = status.st_ino;
    return true;
}

bool isDirectory(DIR* stream, const dirent& entry) {
    if (entry.d_type != DT_UNKNOWN) {
        return entry.d_type == DT_DIR;
    }
    struct stat status {};
    return ::fstatat(::dirfd(stream), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
           S_ISDIR(status.st_mode);
}

class LinuxDirectoryEnumerator final : public ZRMDirectoryEnumerator {
  public:
    LinuxDirectoryEnumerator(Level root, std::string path) : path_(std::move(path)) {
        while (path_.ends_with('/')) {
            path_.pop_back();
        }
        root.pathLength = path_.size();
        levels_.push_back(std::move(root));
    }

    std::optional<ZRMDirectoryEntry> next() override {
        if (!directoryToEnter_.empty()) {
            enter(std::exchange(directoryToEnter_, {}));
        }
        while (!levels_.empty()) {
            DIR* const stream = levels_.back().stream.get();
            const dirent* const entry = ::readdir(stream);  // NOLINT(concurrency-mt-unsafe)
            if (entry == nullptr) {
                leave();
                continue;
            }
            const std::string_view name = entry->d_name;
            if (name == "." || name == "..") {
                continue;
            }
            ZRMDirectoryEntry found{path_ + "/", isDirectory(stream, *entry)};
            found.path += name;
            if (found.isDirectory) {
                directoryToEnter_ = name;
            }
            return found;
        }
        return std::nullopt;
    }

  private:
    void enter(const std::string& name) {
        Level level;
        level.stream = streamOf(::openat(::dirfd(levels_.back().stream.get()), name.c_str(),
                                         kOpenDirectory | O_NOFOLLOW));
        if (!identify(level)) {
            return;
        }
        path_ += "/" + name;
        level.pathLength = path_.size();
        levels_.push_back(std::move(level));
        if (levels_.size() > kZRMLinuxOpenLevels) {
            close(levels_[levels_.size() - 1 - kZRMLinuxOpenLevels]);
        }
    }

    // It may be closed already, from an earlier way down.
    static void close(Level& level) {
        if (level.stream) {
            level.position = ::telldir(level.stream.get());
            level.stream.reset();
        }
    }

    void leave() {
        const auto left = std::move(levels_.back());
        levels_.pop_back();
        if (levels_.empty()) {
            return;
        }
        auto& above = levels_.back();
        path_.resize(above.pathLength);
        if (!above.stream &&
            !reopen(above, ::openat(::dirfd(left.stream.get()), "..", kOpenDirectory)) &&
            !reopen(above, ::open(path_.c_str(), kOpenDirectory))) {
            levels_.clear();  // it was moved away, and with it the way back
        }
    }

    // Whether the descriptor, which it takes, is of that directory.
    static bool reopen(Level& level, int descriptor) {
        Level found;
        found.stream = streamOf(descriptor);
        if (!identify(found) || found.device != level.device || found.number != level.number) {
            return false;
        }
        level.stream = std::move(found.stream);
        ::seekdir(level.stream.get(), level.position);
        return true;
    }

    std::vector<Level> levels_;
    std::string path_;  // of the innermost level
    std::string directoryToEnter_;
};

}  // namespace

ZRMResult<std::unique_ptr<ZRMDirectoryEnumerator>> zrm_makeLinuxDirectoryEnumerator(
    const std::string& path) {
    Level root;
    root.stream = streamOf(::open(path.c_str(), kOpenDirectory));
    if (!identify(root)) {
        return zrm_posixError(errno, path);
    }
    return std::unique_ptr<ZRMDirectoryEnumerator>(
        std::make_unique<LinuxDirectoryEnumerator>(std::move(root), path));
}
