#include <string>

#include <gmock/gmock.h>

#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsExpiry.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsOverflow.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsResendPlan.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Age {
    const char* name;
    double ageSeconds;
    std::int16_t activeDays;
    bool isExpired;
};

class ZRMStatisticsExpiryTest : public ::testing::TestWithParam<Age> {};

struct Fill {
    const char* name;
    std::int64_t size;
    bool isFull;
};

class ZRMStatisticsOverflowTest : public ::testing::TestWithParam<Fill> {};

ZRMStatisticEntity statistic(std::string_view name, double storeTimestamp, std::int16_t priority,
                             std::int16_t activeDays = 1) {
    ZRMStatisticEntity entity;
    entity.jws = std::make_shared<ZRMStatisticsDataInMemory>(
        std::make_shared<const ZRMData>(zrm_dataFromText(name)));
    entity.storeTimestamp = storeTimestamp;
    entity.priority = priority;
    entity.activeDays = activeDays;
    return entity;
}

std::vector<std::string> names(const std::vector<std::shared_ptr<ZRMStatisticsData>>& list) {
    std::vector<std::string> texts;
    for (const auto& data : list) {
        texts.push_back(zrm_textFromData(*data->bytes()));
    }
    return texts;
}

}  // namespace

TEST_P(ZRMStatisticsExpiryTest, FollowsAgeAndActiveDays) {
    EXPECT_EQ(zrm_isStatisticExpired(5000, GetParam().activeDays, 5000 + GetParam().ageSeconds),
              GetParam().isExpired);
}

INSTANTIATE_TEST_SUITE_P(
    ZRMStatistics, ZRMStatisticsExpiryTest,
    ::testing::Values(Age{"New", 0, 1, false}, Age{"ExactlyThirtyDays", 2592000, 1, false},
                      Age{"HalfASecondMore", 2592000.5, 1, true},
                      Age{"ThirtyOneDays", 31 * 86400.0, 1, true},
                      Age{"FromTheFuture", -86400, 1, false}, Age{"ThreeDaysTried", 10, 3, false},
                      Age{"FourDaysTried", 10, 4, true}, Age{"FiveDaysTried", 10, 5, true},
                      Age{"NoDays", 10, 0, false}),
    [](const auto& parameter) { return std::string(parameter.param.name); });

TEST_P(ZRMStatisticsOverflowTest, BeginsOneByteAboveTheLimit) {
    EXPECT_EQ(zrm_isStatisticsStorageFull(GetParam().size, 10485760), GetParam().isFull);
}

INSTANTIATE_TEST_SUITE_P(ZRMStatistics, ZRMStatisticsOverflowTest,
                         ::testing::Values(Fill{"Empty", 0, false}, Fill{"Limit", 10485760, false},
                                           Fill{"OneByteMore", 10485761, true}),
                         [](const auto& parameter) { return std::string(parameter.param.name); });

TEST(ZRMStatisticsOverflow, LimitIsTenMebibytes) {
    EXPECT_EQ(kZRMStatisticsMaxStorageSize, 10485760);
}

TEST(ZRMStatisticsResendPlan, SendsByPriorityAndWithinAPriorityInStoreOrder) {
    const std::vector<ZRMStatisticEntity> statistics = {
        statistic("3a", 1, 3), statistic("1a", 2, 1), statistic("2a", 3, 2),
        statistic("1b", 4, 1), statistic("3b", 5, 3), statistic("2b", 6, 2)};
    const auto plan = zrm_planResend(statistics, 100);
    EXPECT_THAT(names(plan.toSend), ElementsAre("1a", "1b", "2a", "2b", "3a", "3b"));
    EXPECT_THAT(plan.toDelete, IsEmpty());
}

TEST(ZRMStatisticsResendPlan, DeletesWhatIsExpiredOrHasNoPriority) {
    const double now = 10000000;
    const std::vector<ZRMStatisticEntity> statistics = {statistic("31 days", now - 31 * 86400.0, 1),
                                                        statistic("four tries", now, 2, 4),
                                                        statistic("priority 0", now, 0),
                                                        statistic("priority 4", now, 4),
                                                        statistic("negative", now, -1),
                                                        statistic("good", now, 3)};
    const auto plan = zrm_planResend(statistics, now);
    EXPECT_THAT(names(plan.toSend), ElementsAre("good"));
    EXPECT_THAT(names(plan.toDelete),
                ElementsAre("31 days", "four tries", "priority 0", "priority 4", "negative"));
}

TEST(ZRMStatisticsResendPlan, OfNothingIsEmpty) {
    const auto plan = zrm_planResend({}, 0);
    EXPECT_THAT(plan.toSend, IsEmpty());
    EXPECT_THAT(plan.toDelete, IsEmpty());
}
