// Files and directories.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/Values/ZRMDate.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"
#include "ZRMPlatform/Ports/Values/ZRMResult.h"

// An open file for reading and writing; used by one thread at a time; destruction closes it.
class ZRMFileHandle {
  public:
    virtual ~ZRMFileHandle() = default;
    virtual std::optional<ZRMError> seekToEnd() = 0;
    virtual std::optional<ZRMError> seekTo(std::uint64_t offset) = 0;
    // At the current offset, whole or with an error.
    virtual std::optional<ZRMError> write(std::span<const std::uint8_t> bytes) = 0;
    virtual std::optional<ZRMError> truncateAt(std::uint64_t offset) = 0;
    // Returns once the file's bytes are on stable storage.
    virtual std::optional<ZRMError> synchronize() = 0;
};

// An open file, read from its beginning on; used by one thread at a time; destruction closes it.
class ZRMFileReader {
  public:
    virtual ~ZRMFileReader() = default;
    // How many of the bytes that follow were put into the buffer, which is not empty; 0 at the end.
    // A file that is changed meanwhile yields what it then holds.
    virtual ZRMResult<std::size_t> read(std::span<std::uint8_t> buffer) = 0;
};

struct ZRMDirectoryEntry {
    std::string path;  // the enumerated directory's, "/", and the names on the way
    bool isDirectory = false;
};

// Lists all that is below a directory, at any depth. A symbolic link is listed as an entry that is
// no directory, wherever it leads, and is not followed. Memory depends on the depth alone. Used by
// one thread at a time.
class ZRMDirectoryEnumerator {
  public:
    virtual ~ZRMDirectoryEnumerator() = default;
    // In an order of the body's own, a directory before what it holds; absent at the end. What a
    // directory holds is left out when it cannot be listed. Entries that come or go meanwhile may
    // be listed or not.
    virtual std::optional<ZRMDirectoryEntry> next() = 0;
};

// Errors are in kZRMPosixErrorDomain. May be called from any thread; every call may block on the
// disk. New files get mode 0600 and new directories 0700, whatever the umask.
class ZRMFileManager {
  public:
    virtual ~ZRMFileManager() = default;

    [[nodiscard]] virtual bool fileExists(const std::string& path) const = 0;       // no directory
    [[nodiscard]] virtual bool directoryExists(const std::string& path) const = 0;  // a directory
    // The names of what a directory holds, sorted by their bytes, without "." and "..".
    virtual ZRMResult<std::vector<std::string>> contentsOfDirectory(
        const std::string& path) const = 0;
    // With all missing parents; a directory that exists already is success.
    virtual std::optional<ZRMError> createDirectory(const std::string& path) = 0;
    // An empty file; one that exists already is emptied.
    virtual std::optional<ZRMError> createFile(const std::string& path) = 0;
    virtual ZRMResult<ZRMData> readFile(const std::string& path) const = 0;
    // Afterwards, and after a crash at any moment, the file holds all the old or all the new bytes.
    virtual std::optional<ZRMError> writeFileAtomically(const std::string& path,
                                                        const ZRMData& bytes) = 0;
    // A file, or a directory with all that is in it; nothing there is an error (ENOENT).
    virtual std::optional<ZRMError> removeItem(const std::string& path) = 0;
    // Replaces a file at the destination.
    virtual std::optional<ZRMError> moveItem(const std::string& from, const std::string& to) = 0;
    virtual ZRMResult<ZRMDate> creationDate(const std::string& path) const = 0;
    // Marks the item so that device backups leave it out.
    virtual std::optional<ZRMError> excludeFromBackup(const std::string& path) = 0;
    // For reading and writing; the file must exist.
    virtual ZRMResult<std::unique_ptr<ZRMFileHandle>> openForUpdating(const std::string& path) = 0;
    // Regular files only, through links and however long the path: EISDIR for a directory, EINVAL
    // for what else there is. Never waits for a writer.
    virtual ZRMResult<std::unique_ptr<ZRMFileReader>> openForReading(
        const std::string& path) const = 0;
    // A path that is itself a link to a directory is followed.
    virtual ZRMResult<std::unique_ptr<ZRMDirectoryEnumerator>> enumeratorAtPath(
        const std::string& path) const = 0;
};

// Where the application keeps its files; absolute paths without a trailing slash. The directories
// need not exist yet.
class ZRMDirectories {
  public:
    virtual ~ZRMDirectories() = default;
    [[nodiscard]] virtual std::string documents() const = 0;
    [[nodiscard]] virtual std::string applicationSupport() const = 0;
    // The name of the SQLite file layer that stores under these directories go through; empty for
    // SQLite's own.
    [[nodiscard]] virtual std::string databaseFileLayer() const = 0;
};
