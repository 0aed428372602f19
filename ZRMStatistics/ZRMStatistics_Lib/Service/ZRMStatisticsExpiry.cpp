#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsExpiry.h"

bool zrm_isStatisticExpired(double storeTimestamp, std::int16_t activeDays, double now) {
    return now - storeTimestamp > kZRMStatisticsLifetimeSeconds ||
           activeDays >= kZRMStatisticsMaxActiveDays;
}
