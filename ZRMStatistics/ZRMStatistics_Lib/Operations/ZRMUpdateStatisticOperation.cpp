#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMUpdateStatisticOperation.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMActiveDays.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMStatisticsTime.h"

ZRMUpdateStatisticOperation::ZRMUpdateStatisticOperation(
    std::shared_ptr<ZRMStatisticsData> jwsData, std::shared_ptr<ZRMStatisticsContext> context,
    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider)
    : ZRMStatisticBaseOperation(std::move(jwsData), std::move(context)),
      serverTimeProvider_(std::move(serverTimeProvider)) {}

ZRMStatisticBaseOperation::Outcome ZRMUpdateStatisticOperation::changeRecords() {
    auto found = findStatistic();
    if (!found.statistic) {
        return found.missing;
    }
    auto statistic = *found.statistic;
    const ZRMActiveDays before{statistic.activeDays, statistic.lastTryTimestamp};
    const auto after = zrm_activeDaysAfterAttempt(
        before, zrm_statisticsTimestamp(*serverTimeProvider_, context()->platform()->clock->now()));
    if (after == before) {
        return {};
    }
    statistic.activeDays = after.days;
    statistic.lastTryTimestamp = after.lastCountedTimestamp;
    if (auto error = context()->updateObject(statistic)) {
        return {error, [this, failure = *error] { logSaveFailure(failure); }};
    }
    return {};
}

void ZRMUpdateStatisticOperation::logSaveFailure(const ZRMError& error) {
    zrm_logError(this, "Can't update statistic: " + error.localizedDescription());
}
