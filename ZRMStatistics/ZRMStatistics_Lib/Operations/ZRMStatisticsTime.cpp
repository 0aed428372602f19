#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMStatisticsTime.h"

double zrm_statisticsTimestamp(const ZRMServerTimeProvider& serverTimeProvider, ZRMDate now) {
    if (!serverTimeProvider.isValid()) {
        return now.secondsSince1970;
    }
    const auto wholeSeconds = serverTimeProvider.getTime() / 1000;
    return static_cast<double>(wholeSeconds);
}
