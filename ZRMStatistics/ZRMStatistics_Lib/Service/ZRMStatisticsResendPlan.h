// What happens at start to the events that earlier runs left.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticEntity.h"

struct ZRMStatisticsResendPlan {
    // By priority, 1 before 2 before 3; within one as they were given.
    std::vector<std::shared_ptr<ZRMStatisticsData>> toSend;
    // Expired, or of a priority that does not exist.
    std::vector<std::shared_ptr<ZRMStatisticsData>> toDelete;
};

// `now` is in seconds since 1970.
[[nodiscard]] ZRMStatisticsResendPlan zrm_planResend(std::span<const ZRMStatisticEntity> statistics,
                                                     double now);
