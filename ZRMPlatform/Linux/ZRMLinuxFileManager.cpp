#include "ZRMPlatform/Linux/ZRMLinuxFileManager.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <new>
#include <stdexcept>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "ZRMPlatform/Linux/ZRMLinuxDirectoryEnumerator.h"
#include "ZRMPlatform/Linux/ZRMLinuxFileHandle.h"
#include "ZRMPlatform/Linux/ZRMLinuxFileReader.h"
#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"

namespace {

constexpr mode_t kFileMode = 0600;
constexpr mode_t kDirectoryMode = 0700;

constexpr std::string_view kBackupAttribute = "user.xdg.robots.backup";
constexpr std::string_view kBackupAttributeValue = "false";
constexpr std::string_view kCacheTagName = "/CACHEDIR.TAG";
constexpr std::string_view kCacheTag =
    "Signature: 8a477f597d28d172789f06886806bc55\n"
    "# This directory is left out of backups.\n"
    "# For information see https://bford.info/cachedir/\n";

// A text with a NUL inside names another file to the kernel than to the caller.
bool isUsable(const std::string& path) {
    return !path.empty() && path.find('\0') == std::string::npos;
}

ZRMError unusable(const std::string& path) {
    return zrm_posixError(path.empty() ? ENOENT : EINVAL, path.substr(0, path.find('\0')));
}

ZRMError lastError(const std::string& path) {
    return zrm_posixError(errno, path);
}

std::string parentOf(const std::string& path) {
    const auto parent = std::filesystem::path(path).parent_path().string();
    return parent.empty() ? "." : parent;
}

std::optional<struct stat> statusOf(const std::string& path) {
    struct stat status {};
    if (!isUsable(path) || ::stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return status;
}

int makeDirectory(const std::string& path) {
    if (::mkdir(path.c_str(), kDirectoryMode) != 0) {
        const int failure = errno;
        const auto status = statusOf(path);
        return failure == EEXIST && status && S_ISDIR(status->st_mode) ? 0 : failure;
    }
    return ::chmod(path.c_str(), kDirectoryMode) == 0 ? 0 : errno;  // whatever the umask took away
}

int syncDirectory(const std::string& path) {
    const ZRMLinuxDescriptor directory(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return directory.isOpen() && ::fsync(directory.number()) == 0 ? 0 : errno;
}

// A file of another name in the same directory, which becomes the target by one rename or goes.
class TemporaryFile {
  public:
    explicit TemporaryFile(const std::string& directory)
        : path_(directory + "/.zrm-XXXXXX"), file_(::mkostemp(path_.data(), O_CLOEXEC)) {}
    ~TemporaryFile() {
        if (file_.isOpen() && !isInPlace_) {
            ::unlink(path_.c_str());
        }
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    int replace(const std::string& target, const ZRMData& bytes, bool isSynced) {
        if (!file_.isOpen() || ::fchmod(file_.number(), kFileMode) != 0) {
            return errno;
        }
        if (const int failure = zrm_writeAll(file_.number(), bytes)) {
            return failure;
        }
        if ((isSynced && ::fsync(file_.number()) != 0) ||
            ::rename(path_.c_str(), target.c_str()) != 0) {
            return errno;
        }
        isInPlace_ = true;
        return 0;
    }

  private:
    std::string path_;
    ZRMLinuxDescriptor file_;
    bool isInPlace_ = false;
};

ZRMResult<ZRMData> readAll(int descriptor, const std::string& path, std::size_t sizeHint) {
    ZRMData bytes;
    std::size_t used = 0;
    try {
        bytes.resize(sizeHint + 1);
        for (;;) {
            const auto count = ::read(descriptor, bytes.data() + used, bytes.size() - used);
            if (count < 0 && errno == EINTR) {
                continue;
            }
            if (count < 0) {
                return lastError(path);
            }
            used += static_cast<std::size_t>(count);
            if (count == 0) {
                bytes.resize(used);
                return bytes;
            }
            if (used == bytes.size()) {
                bytes.resize(used * 2);
            }
        }
    } catch (const std::bad_alloc&) {
        return zrm_posixError(ENOMEM, path);
    } catch (const std::length_error&) {
        return zrm_posixError(EFBIG, path);
    }
}

}  // namespace

bool ZRMLinuxFileManager::fileExists(const std::string& path) const {
    const auto status = statusOf(path);
    return status && !S_ISDIR(status->st_mode);
}

bool ZRMLinuxFileManager::directoryExists(const std::string& path) const {
    const auto status = statusOf(path);
    return status && S_ISDIR(status->st_mode);
}

ZRMResult<std::vector<std::string>> ZRMLinuxFileManager::contentsOfDirectory(
    const std::string& path) const {
    if (!isUsable(path)) {
        return unusable(path);
    }
    std::error_code failure;
    std::filesystem::directory_iterator item(path, failure);
    std::vector<std::string> names;
    while (!failure && item != std::filesystem::directory_iterator()) {
        names.push_back(item->path().filename().string());
        item.increment(failure);
    }
    if (failure) {
        return zrm_posixError(failure.value(), path);
    }
    std::ranges::sort(names);
    return names;
}

std::optional<ZRMError> ZRMLinuxFileManager::createDirectory(const std::string& path) {
    if (!isUsable(path)) {
        return unusable(path);
    }
    for (std::size_t end = 0; end != std::string::npos;) {
        end = path.find('/', end + 1);
        if (const int failure = makeDirectory(path.substr(0, end))) {
            return zrm_posixError(failure, path);
        }
    }
    return std::nullopt;
}

std::optional<ZRMError> ZRMLinuxFileManager::createFile(const std::string& path) {
    if (!isUsable(path)) {
        return unusable(path);
    }
    const ZRMLinuxDescriptor fresh(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kFileMode));
    if (fresh.isOpen()) {
        return ::fchmod(fresh.number(), kFileMode) == 0 ? std::nullopt
                                                        : std::optional(lastError(path));
    }
    if (errno != EEXIST) {
        return lastError(path);
    }
    const ZRMLinuxDescriptor emptied(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_CLOEXEC, kFileMode));
    return emptied.isOpen() ? std::nullopt : std::optional(lastError(path));
}

ZRMResult<ZRMData> ZRMLinuxFileManager::readFile(const std::string& path) const {
    if (!isUsable(path)) {
        return unusable(path);
    }
    const ZRMLinuxDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.number(), &status) != 0) {
        return lastError(path);
    }
    if (S_ISDIR(status.st_mode)) {
        return zrm_posixError(EISDIR, path);
    }
    return readAll(file.number(), path, static_cast<std::size_t>(status.st_size));
}

std::optional<ZRMError> ZRMLinuxFileManager::writeFileAtomically(const std::string& path,
                                                                 const ZRMData& bytes) {
    if (!isUsable(path)) {
        return unusable(path);
    }
    const auto directory = parentOf(path);
    if (const int failure = TemporaryFile(directory).replace(path, bytes, true)) {
        return zrm_posixError(failure, path);
    }
    if (const int failure = syncDirectory(directory)) {
        return zrm_posixError(failure, directory);
    }
    return std::nullopt;
}

std::optional<ZRMError> ZRMLinuxFileManager::replaceFileUnsynced(const std::string& path,
                                                                 const ZRMData& bytes) {
    if (!isUsable(path)) {
        return unusable(path);
    }
    const int failure = TemporaryFile(parentOf(path)).replace(path, bytes, false);
    return failure == 0 ? std::nullopt : std::optional(zrm_posixError(failure, path));
}

std::optional<ZRMError> ZRMLinuxFileManager::removeItem(const std::string& path) {
    if (!isUsable(path)) {
        return unusable(path);
    }
    std::error_code failure;
    const auto removed = std::filesystem::remove_all(path, failure);
    if (failure) {
        return zrm_posixError(failure.value(), path);
    }
    return removed == 0 ? std::optional(zrm_posixError(ENOENT, path)) : std::nullopt;
}

std::optional<ZRMError> ZRMLinuxFileManager::moveItem(const std::string& from,
                                                      const std::string& to) {
    if (!isUsable(from) || !isUsable(to)) {
        return unusable(isUsable(from) ? to : from);
    }
    if (::rename(from.c_str(), to.c_str()) != 0) {
        return lastError(from + " to " + to);
    }
    return std::nullopt;
}

ZRMResult<ZRMDate> ZRMLinuxFileManager::creationDate(const std::string& path) const {
    if (!isUsable(path)) {
        return unusable(path);
    }
    struct statx status {};
    if (::statx(AT_FDCWD, path.c_str(), 0, STATX_BTIME, &status) != 0) {
        return lastError(path);
    }
    if ((status.stx_mask & STATX_BTIME) == 0) {
        return zrm_posixError(ENOTSUP, path);
    }
    return ZRMDate{static_cast<double>(status.stx_btime.tv_sec) + status.stx_btime.tv_nsec / 1e9};
}

std::optional<ZRMError> ZRMLinuxFileManager::excludeFromBackup(const std::string& path) {
    const auto status = statusOf(path);
    if (!status) {
        return isUsable(path) ? lastError(path) : unusable(path);
    }
    if (S_ISDIR(status->st_mode) && !fileExists(path + std::string(kCacheTagName))) {
        if (auto failure = writeFileAtomically(path + std::string(kCacheTagName),
                                               {kCacheTag.begin(), kCacheTag.end()})) {
            return failure;
        }
    }
    if (::setxattr(path.c_str(), kBackupAttribute.data(), kBackupAttributeValue.data(),
                   kBackupAttributeValue.size(), 0) != 0 &&
        errno != ENOTSUP) {
        return lastError(path);
    }
    return std::nullopt;
}

ZRMResult<std::unique_ptr<ZRMFileHandle>> ZRMLinuxFileManager::openForUpdating(
    const std::string& path) {
    if (!isUsable(path)) {
        return unusable(path);
    }
    ZRMLinuxDescriptor file(::open(path.c_str(), O_RDWR | O_CLOEXEC));
    if (!file.isOpen()) {
        return lastError(path);
    }
    return std::unique_ptr<ZRMFileHandle>(
        std::make_unique<ZRMLinuxFileHandle>(std::move(file), path));
}

ZRMResult<std::unique_ptr<ZRMFileReader>> ZRMLinuxFileManager::openForReading(
    const std::string& path) const {
    return isUsable(path) ? zrm_openLinuxFileReader(path) : unusable(path);
}

ZRMResult<std::unique_ptr<ZRMDirectoryEnumerator>> ZRMLinuxFileManager::enumeratorAtPath(
    const std::string& path) const {
    return isUsable(path) ? zrm_makeLinuxDirectoryEnumerator(path) : unusable(path);
}
