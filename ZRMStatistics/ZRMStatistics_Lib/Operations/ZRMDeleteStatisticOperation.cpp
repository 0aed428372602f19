#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMDeleteStatisticOperation.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"

ZRMDeleteStatisticOperation::ZRMDeleteStatisticOperation(
    std::shared_ptr<ZRMStatisticsData> jwsData, std::shared_ptr<ZRMStatisticsContext> context)
    : ZRMStatisticBaseOperation(std::move(jwsData), std::move(context)) {}

ZRMStatisticBaseOperation::Outcome ZRMDeleteStatisticOperation::changeRecords() {
    auto found = findStatistic();
    if (!found.statistic) {
        return found.missing;
    }
    if (auto error = context()->deleteObject(*found.statistic)) {
        return {error, [this, failure = *error] { logSaveFailure(failure); }};
    }
    return {};
}

void ZRMDeleteStatisticOperation::logSaveFailure(const ZRMError& error) {
    zrm_logError(this, "Can't delete statistic with jwsData: " + jwsText() +
                           ", Error: " + error.localizedDescription());
}
