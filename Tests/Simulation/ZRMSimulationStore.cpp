#include "Tests/Simulation/ZRMSimulationStore.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMSqliteError.h"

namespace {

constexpr const char* kStorePath = "/ZRMStatisticsStorage/ZRMStatisticsStorage";
constexpr const char* kMark = ".damaged";
constexpr const char* kCopy = "/copy/store";

std::vector<ZRMSimulationRecord> recordsIn(SQLite::Database& database) {
    std::vector<ZRMSimulationRecord> records;
    if (!database.tableExists("ZRMStatisticEntity")) {
        return records;
    }
    SQLite::Statement rows(database,
                           "SELECT storeTimestamp, activeDays, priority, jws "
                           "FROM ZRMStatisticEntity ORDER BY storeTimestamp, id");
    while (rows.executeStep()) {
        const auto jws = rows.getColumn(3);
        const auto* bytes = static_cast<const std::uint8_t*>(jws.getBlob());
        records.push_back({rows.getColumn(0).getDouble(), rows.getColumn(1).getInt(),
                           rows.getColumn(2).getInt(), ZRMData(bytes, bytes + jws.getBytes())});
    }
    return records;
}

}  // namespace

std::string ZRMSimulationStore::pathOn(const ZRMSimulatedDisk& disk) {
    for (const auto& path : disk.filesBelow("/")) {
        const auto found = path.find(kStorePath);
        if (found != std::string::npos) {
            return path.substr(0, found) + kStorePath;
        }
    }
    return "";
}

bool ZRMSimulationStore::isMarkedDamaged(const ZRMSimulatedDisk& disk) {
    const auto path = pathOn(disk);
    return !path.empty() && disk.holdsFile(path + kMark);
}

void ZRMSimulationStore::markDamaged(ZRMSimulatedDisk& disk) {
    if (const auto path = pathOn(disk); !path.empty() && !disk.holdsFile(path + kMark)) {
        disk.put(path + kMark, "");
    }
}

ZRMResult<std::vector<ZRMSimulationRecord>> ZRMSimulationStore::read(const ZRMSimulatedDisk& disk) {
    const auto path = pathOn(disk);
    if (path.empty() || !disk.holdsFile(path)) {
        return std::vector<ZRMSimulationRecord>();
    }
    bench_.disk().wipe();
    for (const auto* suffix : {"", "-wal"}) {
        if (disk.holdsFile(path + suffix)) {
            bench_.disk().put(std::string(kCopy) + suffix, disk.bytesOf(path + suffix));
        }
    }
    try {
        SQLite::Database database(std::string(kCopy), SQLite::OPEN_READWRITE, 0,
                                  bench_.platform()->directories->databaseFileLayer());
        return recordsIn(database);
    } catch (const SQLite::Exception& exception) {
        return zrm_errorFromSqlite(exception);
    }
}
