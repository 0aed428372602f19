#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMCreateStatisticOperation.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMStatisticsTime.h"

ZRMCreateStatisticOperation::ZRMCreateStatisticOperation(
    const ZRMSharedData& jwsData, std::shared_ptr<ZRMStatisticsContext> context,
    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider, std::int16_t priority)
    : ZRMStatisticBaseOperation(std::make_shared<ZRMStatisticsDataInMemory>(jwsData),
                                std::move(context)),
      serverTimeProvider_(std::move(serverTimeProvider)),
      priority_(priority) {}

ZRMStatisticBaseOperation::Outcome ZRMCreateStatisticOperation::changeRecords() {
    const auto time =
        zrm_statisticsTimestamp(*serverTimeProvider_, context()->platform()->clock->now());
    const auto made =
        ZRMStatisticEntity::makeStatisticInContext(*context(), jwsData(), time, priority_);
    if (!made) {
        return {made.error(), [this, error = made.error()] { logSaveFailure(error); }};
    }
    return {};
}

void ZRMCreateStatisticOperation::logSaveFailure(const ZRMError& error) {
    zrm_logError(this, "Can't add statistic to store: " + error.localizedDescription());
}
