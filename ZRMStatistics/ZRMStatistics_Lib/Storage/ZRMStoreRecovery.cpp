#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStoreRecovery.h"

#include <array>
#include <cstdint>
#include <limits>
#include <utility>

#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSFileManager/NSFileManager+ZRMCoreKit.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsTable.h"

namespace {

// In the order of their moving. The log goes before the store: a store without its log only lacks
// the last changes, but a log without its store is deleted by whoever opens a store there.
constexpr std::array<const char*, 3> kSuffixes = {"-wal", "-shm", ""};

std::string markPath(const std::string& storePath) {
    return storePath + ".damaged";
}

// Where a repair that got no further was moving the store, as its mark says; or empty.
std::string notedPath(const ZRMFileManager& files, const std::string& storePath) {
    const auto noted = files.readFile(markPath(storePath));
    auto path = noted ? zrm_textFromData(noted.value()) : std::string();
    return path.starts_with(markPath(storePath) + "-") ? path : std::string();
}

// Reads a damaged table from one end. The order of the numbers is the order of the file, so the
// scan never touches an index.
class Scan {
  public:
    static Scan upwards(SQLite::Database& damaged) {
        return {damaged, "ORDER BY id ASC", std::numeric_limits<std::int64_t>::min()};
    }
    // Down to the records after `id`.
    static Scan downwards(SQLite::Database& damaged, std::int64_t id) {
        return {damaged, "ORDER BY id DESC", id};
    }

    struct Record {
        ZRMStatisticsTable::Row row;
        ZRMData jws;
    };

    // Absent at the end and at the damage.
    std::optional<Record> next() {
        try {
            if (!statement_ || !statement_->executeStep()) {
                return std::nullopt;
            }
            Record record;
            record.row = ZRMStatisticsTable::rowAt(*statement_);
            const auto jws = statement_->getColumn(6);
            const auto* bytes = static_cast<const std::uint8_t*>(jws.getBlob());
            record.jws.assign(bytes, bytes + jws.getBytes());
            return record;
        } catch (const SQLite::Exception&) {
            return std::nullopt;
        }
    }

  private:
    Scan(SQLite::Database& damaged, const char* order, std::int64_t after) {
        try {
            statement_.emplace(damaged, std::string("SELECT id, storeTimestamp, lastTryTimestamp, "
                                                    "activeDays, priority, length(jws), jws "
                                                    "FROM ZRMStatisticEntity NOT INDEXED "
                                                    "WHERE id > ? ") +
                                            order);
            statement_->bind(1, after);
        } catch (const SQLite::Exception&) {
            statement_.reset();
        }
    }

    std::optional<SQLite::Statement> statement_;
};

// Absent when not even the file's beginning can be read.
std::optional<SQLite::Database> openDamaged(const ZRMPlatform& platform, const std::string& path) {
    try {
        // Writable, because the log beside the file may have to be read into it.
        return SQLite::Database(path, SQLite::OPEN_READWRITE | SQLite::OPEN_NOMUTEX, 0,
                                platform.directories->databaseFileLayer());
    } catch (const SQLite::Exception&) {
        return std::nullopt;
    }
}

// Upwards to the damage, then downwards to it from the other end. Throws what `fresh` throws.
std::size_t copyReadable(const ZRMPlatform& platform, const std::string& damagedPath,
                         SQLite::Database& fresh) {
    auto damaged = openDamaged(platform, damagedPath);
    if (!damaged) {
        return 0;
    }
    ZRMStatisticsTable table(fresh);
    std::size_t copied = 0;
    auto last = std::numeric_limits<std::int64_t>::min();
    auto up = Scan::upwards(*damaged);
    while (const auto record = up.next()) {
        table.insert(record->row, record->jws);
        last = record->row.id;
        ++copied;
    }
    auto down = Scan::downwards(*damaged, last);
    while (const auto record = down.next()) {
        table.insert(record->row, record->jws);
        ++copied;
    }
    return copied;
}

}  // namespace

void zrm_markStoreDamaged(ZRMFileManager& fileManager, const std::string& storePath) {
    fileManager.createFile(markPath(storePath));
}

bool zrm_isStoreMarkedDamaged(const ZRMFileManager& fileManager, const std::string& storePath) {
    return fileManager.fileExists(markPath(storePath));
}

ZRMResult<std::optional<std::string>> zrm_moveStoreAside(const ZRMPlatform& platform,
                                                         const std::string& storePath) {
    auto& files = *platform.fileManager;
    auto movedPath = notedPath(files, storePath);
    if (!movedPath.empty() && files.fileExists(movedPath)) {
        return std::optional(std::move(movedPath));
    }
    if (!files.fileExists(storePath)) {
        return std::optional<std::string>();
    }
    if (movedPath.empty()) {
        movedPath = zrm_pathForDamagedItem(files, storePath, platform.clock->now());
    }
    // Noted before anything moves, so that a process that ends meanwhile is carried on from.
    if (auto error = files.writeFileAtomically(markPath(storePath), zrm_dataFromText(movedPath))) {
        return *std::move(error);
    }
    for (const auto* suffix : kSuffixes) {
        if (files.fileExists(storePath + suffix)) {
            if (auto error = files.moveItem(storePath + suffix, movedPath + suffix)) {
                return *std::move(error);
            }
        }
    }
    return std::optional(std::move(movedPath));
}

std::optional<std::size_t> zrm_carryRecordsOver(const ZRMPlatform& platform,
                                                const std::string& damagedPath,
                                                SQLite::Database& fresh) {
    try {
        SQLite::Transaction transaction(fresh);
        // Records that are there already came with an earlier repair that got so far.
        const auto present = ZRMStatisticsTable(fresh).totals().count;
        if (present > 0) {
            return static_cast<std::size_t>(present);
        }
        const auto copied = copyReadable(platform, damagedPath, fresh);
        transaction.commit();
        return copied;
    } catch (const SQLite::Exception&) {
        return std::nullopt;
    }
}

void zrm_finishStoreRepair(ZRMFileManager& fileManager, const std::string& storePath) {
    if (zrm_isStoreMarkedDamaged(fileManager, storePath)) {
        fileManager.removeItem(markPath(storePath));
    }
}
