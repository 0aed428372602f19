#include "Tools/zrm-inspect/ZRMStoreInspection.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <vector>

#include <SQLiteCpp/SQLiteCpp.h>

#include "Tools/zrm-inspect/ZRMUploadInspection.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMSqliteError.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsTable.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kStoreName = "ZRMStatisticsStorage";  // of the file and of its folder
constexpr int kBusyTimeoutMilliseconds = 1000;
constexpr std::size_t kNoLimit = 0;

struct Record {
    ZRMStatisticsTable::Row row;
    ZRMData bytes;
};

std::vector<fs::path> storesBelow(const std::string& home, std::error_code& failure) {
    std::vector<fs::path> stores;
    fs::recursive_directory_iterator entry(home, fs::directory_options::skip_permission_denied,
                                           failure);
    while (!failure && entry != fs::recursive_directory_iterator()) {
        const auto& path = entry->path();
        if (path.filename() == kStoreName && path.parent_path().filename() == kStoreName &&
            entry->is_regular_file()) {
            stores.push_back(path);
        }
        entry.increment(failure);
    }
    std::sort(stores.begin(), stores.end());
    return stores;
}

void readStore(const fs::path& path, std::vector<Record>& records) {
    SQLite::Database database(path.string(), SQLite::OPEN_READONLY, kBusyTimeoutMilliseconds);
    ZRMStatisticsTable table(database);
    for (const auto& row : table.all(kNoLimit)) {
        auto bytes = table.bytes(row.id);
        records.push_back({row, bytes ? *std::move(bytes) : ZRMData()});
    }
}

ZRMDictionary reportOf(const Record& record, bool& isGood) {
    const auto upload = zrm_uploadFromBytes(record.bytes);
    ZRMDictionary report;
    report["eventType"] = upload ? ZRMJsonValue(upload.value().eventType) : ZRMJsonValue(nullptr);
    report["storeTimestamp"] = record.row.storeTimestamp;
    report["lastTryTimestamp"] = record.row.lastTryTimestamp;
    report["activeDays"] = record.row.activeDays;
    report["priority"] = record.row.priority;
    report["bytes"] = record.bytes.size();
    report["error"] = nullptr;
    if (!upload) {
        report["error"] = zrm_reportOfError(upload.error());
        isGood = false;
    }
    return report;
}

ZRMInspection failedStore(const ZRMError& error) {
    return {{{"records", ZRMJsonArray()}, {"error", zrm_reportOfError(error)}}, false};
}

}  // namespace

ZRMInspection zrm_inspectStore(const std::string& home) {
    std::error_code failure;
    const auto stores = storesBelow(home, failure);
    if (failure) {
        return failedStore(ZRMError::withDescription(kZRMPosixErrorDomain, failure.value(),
                                                     home + ": " + failure.message()));
    }
    if (stores.empty()) {
        return failedStore(
            zrm_inspectError(ZRMInspectErrorNoStore, "there is no store below " + home));
    }
    std::vector<Record> records;
    try {
        for (const auto& store : stores) {
            readStore(store, records);
        }
    } catch (const SQLite::Exception& exception) {
        return failedStore(zrm_errorFromSqlite(exception));
    }
    std::stable_sort(records.begin(), records.end(), [](const auto& left, const auto& right) {
        return left.row.storeTimestamp < right.row.storeTimestamp;
    });
    ZRMJsonArray reports;
    bool isGood = true;
    for (const auto& record : records) {
        reports.push_back(reportOf(record, isGood));
    }
    return {{{"records", std::move(reports)}, {"error", nullptr}}, isGood};
}
