// One file that SQLite has open on the simulated disk.
#pragma once

#include <memory>
#include <string>

#include <sqlite3.h>

#include "ZRMPlatform/Simulated/ZRMSimulatedDisk.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedProcess.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedSqliteLocks.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedTime.h"

// What the file layer of one process stands on.
struct ZRMSimulatedSqliteGround {
    std::shared_ptr<ZRMSimulatedDisk> disk;
    std::shared_ptr<ZRMSimulatedProcess> process;
    std::shared_ptr<ZRMSimulatedTime> time;
    std::shared_ptr<ZRMRandom> random;
    ZRMSimulatedSqliteLockTable locks;

    // 0, or the error that the operation fails with; EIO in a dead process.
    int judge(ZRMSimulatedDiskOperation operation, const std::string& path);
};

// Operations answer with SQLite's result codes: SQLITE_FULL for a full disk, else the SQLITE_IOERR
// of the operation. They fail once the process is dead or its layer is gone; closing always works.
class ZRMSimulatedSqliteFile {
  public:
    ZRMSimulatedSqliteFile(std::weak_ptr<ZRMSimulatedSqliteGround> ground,
                           std::shared_ptr<ZRMSimulatedFile> file,
                           std::shared_ptr<ZRMSimulatedSqliteLocks> locks, std::string path,
                           bool removeOnClose);
    ~ZRMSimulatedSqliteFile();
    ZRMSimulatedSqliteFile(const ZRMSimulatedSqliteFile&) = delete;
    ZRMSimulatedSqliteFile& operator=(const ZRMSimulatedSqliteFile&) = delete;

    // What is behind the end reads as zeros, with SQLITE_IOERR_SHORT_READ.
    int read(std::span<std::uint8_t> bytes, std::uint64_t offset);
    int write(std::span<const std::uint8_t> bytes, std::uint64_t offset);
    int truncate(std::uint64_t size);
    int synchronize();
    int size(sqlite3_int64& size);

    int lock(int level);
    int unlock(int level);
    int checkReserved(bool& reserved);

    int mapRegion(std::size_t number, std::size_t size, bool make, volatile void** region);
    int lockSlots(int first, int count, int flags);
    void unmap();

    // The table of functions that leads SQLite from a Handle to the operations above.
    struct Handle {
        sqlite3_file base;
        ZRMSimulatedSqliteFile* file;
    };
    static const sqlite3_io_methods& methods();

  private:
    int judge(ZRMSimulatedDiskOperation operation);

    std::weak_ptr<ZRMSimulatedSqliteGround> ground_;
    std::shared_ptr<ZRMSimulatedFile> file_;
    std::shared_ptr<ZRMSimulatedSqliteLocks> locks_;
    std::string path_;
    bool removeOnClose_;
    ZRMSimulatedSqliteHolder holder_;
};
