#include "ZRMPlatform/Linux/ZRMLinuxPropertyListFile.h"

#include <cerrno>
#include <filesystem>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include "ZRMPlatform/Linux/ZRMLinuxClock.h"
#include "ZRMPlatform/Linux/ZRMLinuxFileManager.h"
#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"

namespace {

// Of the whole file's writers. Every holder opens the file anew, so that threads exclude each other
// as processes do.
class WriterLock {
  public:
    explicit WriterLock(const std::string& path)
        : file_(::open((path + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, kMode)) {
        if (!file_.isOpen()) {
            failure_ = errno;
            return;
        }
        // Whatever the umask left of it; a writer that comes later must be able to open it too.
        static_cast<void>(::fchmod(file_.number(), kMode));
        while (::flock(file_.number(), LOCK_EX) != 0) {
            if (errno != EINTR) {
                failure_ = errno;
                return;
            }
        }
    }

    [[nodiscard]] int failure() const { return failure_; }

  private:
    static constexpr mode_t kMode = 0600;

    ZRMLinuxDescriptor file_;
    int failure_ = 0;
};

}  // namespace

ZRMLinuxPropertyListFile::ZRMLinuxPropertyListFile(std::string path,
                                                   std::shared_ptr<ZRMConsoleLog> console,
                                                   Durability durability)
    : path_(std::move(path)), console_(std::move(console)), durability_(durability) {}

ZRMResult<ZRMLinuxPropertyList> ZRMLinuxPropertyListFile::read() const {
    auto found = readOnce();
    if (!found) {
        return found.error();
    }
    if (auto list = std::move(found).value()) {
        return std::move(*list);
    }
    const WriterLock lock(path_);
    if (lock.failure() != 0) {
        return zrm_posixError(lock.failure(), path_);
    }
    return readUnderLock();
}

std::optional<ZRMError> ZRMLinuxPropertyListFile::update(
    const std::function<bool(plist_t)>& change) {
    ZRMLinuxFileManager files;
    if (auto failure = files.createDirectory(std::filesystem::path(path_).parent_path().string())) {
        return failure;
    }
    const WriterLock lock(path_);
    if (lock.failure() != 0) {
        return zrm_posixError(lock.failure(), path_);
    }
    auto found = readUnderLock();
    if (!found) {
        return found.error();
    }
    const auto list = std::move(found).value();
    if (!change(list.get())) {
        return std::nullopt;
    }
    const auto bytes = zrm_writeXmlPropertyList(list.get());
    if (bytes.empty()) {
        return zrm_posixError(EIO, path_);
    }
    return durability_ == Durability::Disk ? files.writeFileAtomically(path_, bytes)
                                           : files.replaceFileUnsynced(path_, bytes);
}

ZRMResult<std::optional<ZRMLinuxPropertyList>> ZRMLinuxPropertyListFile::readOnce() const {
    const auto bytes = ZRMLinuxFileManager().readFile(path_);
    if (!bytes && bytes.error().code() == ENOENT) {
        return std::optional(ZRMLinuxPropertyList(plist_new_dict()));
    }
    if (!bytes) {
        return bytes.error();
    }
    auto list = zrm_readPropertyList(bytes.value());
    if (!list || plist_get_node_type(list.get()) != PLIST_DICT) {
        return std::optional<ZRMLinuxPropertyList>();
    }
    return std::optional(std::move(list));
}

ZRMResult<ZRMLinuxPropertyList> ZRMLinuxPropertyListFile::readUnderLock() const {
    auto found = readOnce();
    if (!found) {
        return found.error();
    }
    if (auto list = std::move(found).value()) {
        return std::move(*list);
    }
    if (auto failure = moveAside()) {
        return std::move(*failure);
    }
    return ZRMLinuxPropertyList(plist_new_dict());
}

std::optional<ZRMError> ZRMLinuxPropertyListFile::moveAside() const {
    ZRMLinuxFileManager files;
    auto seconds = static_cast<std::int64_t>(ZRMLinuxClock().now().secondsSince1970);
    auto aside = path_ + ".damaged-" + std::to_string(seconds);
    while (files.fileExists(aside)) {  // an earlier piece of evidence stays
        aside = path_ + ".damaged-" + std::to_string(++seconds);
    }
    if (auto failure = files.moveItem(path_, aside)) {
        return failure;
    }
    console_->write("The file " + path_ + " is damaged and was moved to " + aside + "\n");
    return std::nullopt;
}
