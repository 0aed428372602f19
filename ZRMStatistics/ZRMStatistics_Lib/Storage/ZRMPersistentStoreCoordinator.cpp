#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMPersistentStoreCoordinator.h"

#include <sqlite3.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMSqliteError.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsSchema.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStoreRecovery.h"

namespace {

// How long a statement waits for another process that holds the store: little while the host waits
// for the activation, longer in the background.
constexpr int kOpenTimeoutMilliseconds = 200;
constexpr int kBusyTimeoutMilliseconds = 5000;

using OpenResult = ZRMResult<std::shared_ptr<ZRMPersistentStoreCoordinator>>;

void refuseReadOnly(SQLite::Database& database) {
    if (sqlite3_db_readonly(database.getHandle(), "main") == 1) {
        throw SQLite::Exception(sqlite3_errstr(SQLITE_READONLY), SQLITE_READONLY);
    }
}

OpenResult openStore(const ZRMPlatform& platform, const std::string& path,
                     const ZRMManagedObjectModel& model) {
    // The file manager makes the file so that it has the file manager's mode, which the database
    // hands on to the log and index beside it. A failure shows when the database opens it.
    if (!platform.fileManager->fileExists(path)) {
        platform.fileManager->createFile(path);
    }
    try {
        auto database = std::make_unique<SQLite::Database>(
            path, SQLite::OPEN_READWRITE | SQLite::OPEN_NOMUTEX, kOpenTimeoutMilliseconds,
            platform.directories->databaseFileLayer());
        refuseReadOnly(*database);
        if (auto refusal = zrm_refuseNewerStore(*database, model)) {
            return *std::move(refusal);
        }
        database->exec("PRAGMA journal_mode = WAL");
        database->exec("PRAGMA synchronous = FULL");
        zrm_migrateStore(*database, model);
        database->setBusyTimeout(kBusyTimeoutMilliseconds);
        return std::make_shared<ZRMPersistentStoreCoordinator>(std::move(database), path);
    } catch (const SQLite::Exception& exception) {
        return zrm_errorFromSqlite(exception);
    }
}

OpenResult repairStore(const ZRMPlatform& platform, const std::string& path,
                       const ZRMManagedObjectModel& model) {
    const auto movedTo = zrm_moveStoreAside(platform, path);
    if (!movedTo) {
        return movedTo.error();
    }
    auto fresh = openStore(platform, path, model);
    if (!fresh) {
        if (zrm_isStoreDamage(fresh.error())) {
            // Damaged again before its repair was over: the next opening moves this one too.
            zrm_markStoreDamaged(*platform.fileManager, path);
        }
        return fresh;
    }
    std::optional<std::size_t> saved = 0;
    if (const auto& damagedPath = movedTo.value()) {
        saved = zrm_carryRecordsOver(platform, *damagedPath, fresh.value()->database());
        zrm_logError(fresh.value().get(),
                     "Statistics storage was damaged and is now at '" + *damagedPath +
                         "', records carried over: " + std::to_string(saved.value_or(0)));
    }
    if (saved) {
        zrm_finishStoreRepair(*platform.fileManager, path);
    }
    return fresh;
}

}  // namespace

ZRMPersistentStoreCoordinator::ZRMPersistentStoreCoordinator(
    std::unique_ptr<SQLite::Database> database, std::string storePath)
    : database_(std::move(database)), storePath_(std::move(storePath)) {}

OpenResult ZRMPersistentStoreCoordinator::create(const ZRMPlatform& platform,
                                                 const std::string& storePath,
                                                 const ZRMManagedObjectModel& model) {
    const bool isKnownDamaged = zrm_isStoreMarkedDamaged(*platform.fileManager, storePath);
    if (!isKnownDamaged) {
        auto opened = openStore(platform, storePath, model);
        if (opened || !zrm_isStoreDamage(opened.error())) {
            return opened;
        }
    }
    return repairStore(platform, storePath, model);
}
