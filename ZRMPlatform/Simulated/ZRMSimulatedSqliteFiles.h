// A file layer for SQLite that stores on the simulated disk.
#pragma once

#include <memory>
#include <string>

#include "ZRMPlatform/Simulated/ZRMSimulatedSqliteFile.h"

// Registered with SQLite under a name of its own as long as it lives. Databases, journals and
// write-ahead logs are ordinary files of the disk and pass its faults; locks and shared memory
// belong to the process. Connections may outlive it: they then fail with I/O errors and can be
// closed. Busy waits return at once, without time passing: with one thread nobody could end them.
class ZRMSimulatedSqliteFiles {
  public:
    ZRMSimulatedSqliteFiles(std::shared_ptr<ZRMSimulatedDisk> disk,
                            std::shared_ptr<ZRMSimulatedProcess> process,
                            std::shared_ptr<ZRMSimulatedTime> time,
                            std::shared_ptr<ZRMRandom> random);
    ~ZRMSimulatedSqliteFiles();
    ZRMSimulatedSqliteFiles(const ZRMSimulatedSqliteFiles&) = delete;
    ZRMSimulatedSqliteFiles& operator=(const ZRMSimulatedSqliteFiles&) = delete;

    // What sqlite3_open_v2 takes as its last parameter.
    [[nodiscard]] const std::string& name() const;

    struct Layer;

  private:
    std::shared_ptr<ZRMSimulatedSqliteGround> ground_;
    Layer* layer_;
};
