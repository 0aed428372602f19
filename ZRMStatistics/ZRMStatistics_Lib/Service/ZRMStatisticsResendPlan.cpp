#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsResendPlan.h"

#include <array>
#include <cstddef>

#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsExpiry.h"

namespace {

constexpr std::int16_t kFirstPriority = 1;
constexpr std::int16_t kLastPriority = 3;

}  // namespace

ZRMStatisticsResendPlan zrm_planResend(std::span<const ZRMStatisticEntity> statistics, double now) {
    ZRMStatisticsResendPlan plan;
    std::array<std::vector<std::shared_ptr<ZRMStatisticsData>>, kLastPriority> lists;
    for (const auto& statistic : statistics) {
        if (zrm_isStatisticExpired(statistic.storeTimestamp, statistic.activeDays, now) ||
            statistic.priority < kFirstPriority || statistic.priority > kLastPriority) {
            plan.toDelete.push_back(statistic.jws);
        } else {
            lists[static_cast<std::size_t>(statistic.priority - kFirstPriority)].push_back(
                statistic.jws);
        }
    }
    for (auto& list : lists) {
        plan.toSend.insert(plan.toSend.end(), list.begin(), list.end());
    }
    return plan;
}
