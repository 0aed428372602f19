// The open store file.
#pragma once

#include <memory>
#include <string>

#include <SQLiteCpp/Database.h>

#include "ZRMPlatform/Ports/ZRMPlatform.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMManagedObjectModel.h"

// One connection, used by one thread at a time. Commits are on stable storage when they return.
class ZRMPersistentStoreCoordinator {
  public:
    // Opens or makes the store and brings it up to the model. A store of a newer version, one that
    // another process holds and one that cannot be written are refused and left as they are. A
    // damaged store is moved aside, and a fresh one takes over what can still be read.
    static ZRMResult<std::shared_ptr<ZRMPersistentStoreCoordinator>> create(
        const ZRMPlatform& platform, const std::string& storePath,
        const ZRMManagedObjectModel& model);

    ZRMPersistentStoreCoordinator(std::unique_ptr<SQLite::Database> database,
                                  std::string storePath);

    [[nodiscard]] SQLite::Database& database() { return *database_; }
    [[nodiscard]] const std::string& storePath() const { return storePath_; }

  private:
    std::unique_ptr<SQLite::Database> database_;
    std::string storePath_;
};
