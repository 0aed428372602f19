// One queued event in the store.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/Values/ZRMResult.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsData.h"

class ZRMStatisticsContext;

// Which records to fetch: in the order of their storing, oldest first.
struct ZRMStatisticFetchRequest {
    ZRMSharedData jws;           // records with exactly these bytes; null for every record
    std::size_t fetchLimit = 0;  // 0 for no limit

    // For the log.
    [[nodiscard]] std::string description() const;
};

struct ZRMStatisticEntity {
    static constexpr const char* kEntityName = "ZRMStatisticEntity";

    std::int64_t objectIdentifier = 0;  // the store's own number of the record
    std::shared_ptr<ZRMStatisticsData> jws;
    double storeTimestamp = 0;    // seconds since 1970
    double lastTryTimestamp = 0;  // seconds since 1970
    std::int16_t activeDays = 0;
    std::int16_t priority = 0;

    // Inserts a record of its first day; inside a block of the context, which still has to save.
    static ZRMResult<ZRMStatisticEntity> makeStatisticInContext(
        ZRMStatisticsContext& context, const std::shared_ptr<ZRMStatisticsData>& jws,
        double timestamp, std::int16_t priority);

    static ZRMStatisticFetchRequest fetchRequest() { return {}; }
};
