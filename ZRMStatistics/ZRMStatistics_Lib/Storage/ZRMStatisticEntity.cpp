#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticEntity.h"

#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsContext.h"

std::string ZRMStatisticFetchRequest::description() const {
    const auto predicate = jws ? "jws == <" + std::to_string(jws->size()) + " bytes>" : "(null)";
    return std::string("(entity: ") + ZRMStatisticEntity::kEntityName +
           "; predicate: " + predicate + "; limit: " + std::to_string(fetchLimit) + ")";
}

ZRMResult<ZRMStatisticEntity> ZRMStatisticEntity::makeStatisticInContext(
    ZRMStatisticsContext& context, const std::shared_ptr<ZRMStatisticsData>& jws, double timestamp,
    std::int16_t priority) {
    ZRMStatisticEntity statistic;
    statistic.jws = jws;
    statistic.storeTimestamp = timestamp;
    statistic.lastTryTimestamp = timestamp;
    statistic.activeDays = 1;
    statistic.priority = priority;
    return context.insertObject(statistic);
}
