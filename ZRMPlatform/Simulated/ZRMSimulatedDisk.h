// The disk of a simulated device: a tree of files in memory that outlives the process.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/Values/ZRMDate.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDiskFaults.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedFile.h"

class ZRMSimulatedTime;
class ZRMRandom;

// What becomes of writes that were not synced when the process ends.
enum class ZRMSimulatedLoss {
    None,  // the process was killed: the system still holds its writes
    All,   // the power was cut: every file is as it was at its last sync
    Some,  // the power was cut: each unsynced sector made it to the disk or did not, by chance
};

// Names (creation, removal, renaming) reach the disk at once and in order, as on a journalling file
// system; only the bytes of files can be lost. Every operation for a program first passes the
// faults. Results are 0 or an errno value. Paths are absolute. One thread.
class ZRMSimulatedDisk {
  public:
    using Operation = ZRMSimulatedDiskOperation;

    ZRMSimulatedDisk(std::shared_ptr<ZRMSimulatedTime> time, std::shared_ptr<ZRMRandom> random);

    [[nodiscard]] ZRMSimulatedDiskFaults& faults() { return faults_; }
    // Room for the bytes of all files; writes beyond it fail with ENOSPC.
    void setCapacity(std::uint64_t bytes) { capacity_ = bytes; }
    [[nodiscard]] std::uint64_t usedBytes() const;

    // For tests, past the faults and the capacity.
    // Puts the file there, synced, with the directories above it.
    void put(const std::string& path, const ZRMData& bytes);
    void put(const std::string& path, std::string_view text);
    [[nodiscard]] bool holdsFile(const std::string& path) const;
    [[nodiscard]] bool holdsDirectory(const std::string& path) const;
    // The bytes programs see; empty when there is no such file.
    [[nodiscard]] ZRMData bytesOf(const std::string& path) const;
    // Every file below the directory, sorted.
    [[nodiscard]] std::vector<std::string> filesBelow(const std::string& directory) const;
    [[nodiscard]] bool isExcludedFromBackup(const std::string& path) const;
    void wipe();

    // For port bodies.
    int judge(Operation operation, const std::string& path) {
        return faults_.judge(operation, path);
    }
    int makeDirectory(const std::string& path);
    // Makes the file or finds it; ENOENT without the directory above, EISDIR for a directory.
    int create(const std::string& path, std::shared_ptr<ZRMSimulatedFile>& file);
    int find(const std::string& path, std::shared_ptr<ZRMSimulatedFile>& file) const;
    int write(ZRMSimulatedFile& file, std::uint64_t offset, std::span<const std::uint8_t> bytes);
    int truncate(ZRMSimulatedFile& file, std::uint64_t size);
    int remove(const std::string& path);
    int move(const std::string& from, const std::string& to);
    int created(const std::string& path, ZRMDate& date) const;
    // The names directly in the directory, sorted.
    int list(const std::string& path, std::vector<std::string>& names) const;
    // The first path in the order of bytes that comes after that text.
    [[nodiscard]] std::optional<std::string> pathAfter(const std::string& text) const;
    int excludeFromBackup(const std::string& path);

    // The process is gone: unsynced bytes fare as told.
    void lose(ZRMSimulatedLoss loss);

    // Without the slashes at the end; the root is the empty text.
    static std::string normalized(std::string_view path);
    static std::string parentOf(const std::string& path);

  private:
    // A file, or a directory where there is none.
    struct Node {
        std::shared_ptr<ZRMSimulatedFile> file;
        ZRMDate created;
        bool excludedFromBackup = false;
    };
    using Nodes = std::map<std::string, Node>;

    [[nodiscard]] int checkParent(const std::string& path) const;
    [[nodiscard]] bool fits(const ZRMSimulatedFile& file, std::uint64_t size) const;
    // The nodes strictly below the directory.
    [[nodiscard]] std::pair<Nodes::const_iterator, Nodes::const_iterator> below(
        const std::string& directory) const;

    std::shared_ptr<ZRMSimulatedTime> time_;
    std::shared_ptr<ZRMRandom> random_;
    ZRMSimulatedDiskFaults faults_;
    Nodes nodes_;
    std::uint64_t capacity_ = std::numeric_limits<std::uint64_t>::max();
};
