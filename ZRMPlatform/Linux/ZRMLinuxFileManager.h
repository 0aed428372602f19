// Files and directories over POSIX calls.
#pragma once

#include "ZRMPlatform/Ports/ZRMFileManager.h"

// Backup exclusion is the cache-directory tag in a directory and the attribute
// "user.xdg.robots.backup" = "false" on any item; a file system without attributes is no failure.
// The creation date is the file system's birth time; where it keeps none, the error is ENOTSUP.
class ZRMLinuxFileManager : public ZRMFileManager {
  public:
    [[nodiscard]] bool fileExists(const std::string& path) const override;
    [[nodiscard]] bool directoryExists(const std::string& path) const override;
    ZRMResult<std::vector<std::string>> contentsOfDirectory(const std::string& path) const override;
    std::optional<ZRMError> createDirectory(const std::string& path) override;
    std::optional<ZRMError> createFile(const std::string& path) override;
    ZRMResult<ZRMData> readFile(const std::string& path) const override;
    std::optional<ZRMError> writeFileAtomically(const std::string& path,
                                                const ZRMData& bytes) override;
    // The same, except that the loss of power may leave the old bytes, or none. Does not wait for
    // the disk.
    std::optional<ZRMError> replaceFileUnsynced(const std::string& path, const ZRMData& bytes);
    std::optional<ZRMError> removeItem(const std::string& path) override;
    std::optional<ZRMError> moveItem(const std::string& from, const std::string& to) override;
    ZRMResult<ZRMDate> creationDate(const std::string& path) const override;
    std::optional<ZRMError> excludeFromBackup(const std::string& path) override;
    ZRMResult<std::unique_ptr<ZRMFileHandle>> openForUpdating(const std::string& path) override;
    ZRMResult<std::unique_ptr<ZRMFileReader>> openForReading(
        const std::string& path) const override;
    ZRMResult<std::unique_ptr<ZRMDirectoryEnumerator>> enumeratorAtPath(
        const std::string& path) const override;
};
