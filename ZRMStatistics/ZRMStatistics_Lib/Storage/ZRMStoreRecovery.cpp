#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStoreRecovery.h"

#include <array>
#include <cstdint>
#include <limits>
#include <optional>

#include <SQLiteCpp/Statement.h>
#include <SQLiteCpp/Transaction.h>

#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsTable.h"

namespace {

constexpr std::array<const char*, 2> kCompanionSuffixes = {"-wal", "-shm"};

std::string markPath(const std::string& storePath) {
    return storePath + ".damaged";
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
            record.row = {statement_->getColumn(0).getInt64(), statement_->getColumn(1).getDouble(),
                          statement_->getColumn(2).getDouble(),
                          static_cast<std::int16_t>(statement_->getColumn(3).getInt()),
                          static_cast<std::int16_t>(statement_->getColumn(4).getInt())};
            const auto jws = statement_->getColumn(5);
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
                                                    "activeDays, priority, jws "
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

// Upwards to the damage, then downwards to it from the other end.
std::size_t copyReadable(SQLite::Database& damaged, SQLite::Database& fresh) {
    ZRMStatisticsTable table(fresh);
    std::size_t copied = 0;
    auto last = std::numeric_limits<std::int64_t>::min();
    auto up = Scan::upwards(damaged);
    while (const auto record = up.next()) {
        table.insert(record->row, record->jws);
        last = record->row.id;
        ++copied;
    }
    auto down = Scan::downwards(damaged, last);
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

ZRMResult<std::string> zrm_moveStoreAside(const ZRMPlatform& platform,
                                          const std::string& storePath) {
    auto& files = *platform.fileManager;
    const auto seconds = static_cast<std::int64_t>(platform.clock->now().secondsSince1970);
    const auto movedPath = storePath + ".damaged-" + std::to_string(seconds);
    if (auto error = files.moveItem(storePath, movedPath)) {
        return *std::move(error);
    }
    for (const auto* suffix : kCompanionSuffixes) {
        if (files.fileExists(storePath + suffix)) {
            files.moveItem(storePath + suffix, movedPath + suffix);
        }
    }
    if (files.fileExists(markPath(storePath))) {
        files.removeItem(markPath(storePath));
    }
    return movedPath;
}

std::size_t zrm_carryRecordsOver(const ZRMPlatform& platform, const std::string& damagedPath,
                                 SQLite::Database& fresh) {
    try {
        // Writable, because the log beside the file may have to be read into it.
        SQLite::Database damaged(damagedPath, SQLite::OPEN_READWRITE | SQLite::OPEN_NOMUTEX, 0,
                                 platform.directories->databaseFileLayer());
        SQLite::Transaction transaction(fresh);
        const auto copied = copyReadable(damaged, fresh);
        transaction.commit();
        return copied;
    } catch (const SQLite::Exception&) {
        return 0;
    }
}
