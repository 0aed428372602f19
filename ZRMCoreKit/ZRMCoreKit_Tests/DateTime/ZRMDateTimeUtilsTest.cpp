#include <limits>

#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMDateTimeUtils.h"

namespace {

class StoppedClock final : public ZRMClock {
  public:
    StoppedClock(double nowSeconds, std::optional<ZRMBootTime> boot)
        : now_{nowSeconds}, boot_(boot) {}
    [[nodiscard]] ZRMDate now() const override { return now_; }
    [[nodiscard]] std::optional<ZRMBootTime> bootTime() const override { return boot_; }
    [[nodiscard]] double uptimeSeconds() const override { return 0; }

  private:
    ZRMDate now_;
    std::optional<ZRMBootTime> boot_;
};

constexpr ZRMBootTime kBoot{1700000000, 123999};

}  // namespace

TEST(ZRMDateTimeUtils, StartDateTimeIsTheBootInWholeMilliseconds) {
    EXPECT_EQ(ZRMDateTimeUtils::getStartDateTime(StoppedClock(0, kBoot)), 1700000000123);
}

TEST(ZRMDateTimeUtils, StartDateTimeIsAbsentWhenTheKernelDoesNotTell) {
    EXPECT_EQ(ZRMDateTimeUtils::getStartDateTime(StoppedClock(0, std::nullopt)), std::nullopt);
}

TEST(ZRMDateTimeUtils, ABootTimeBeyondAllReasonIsAbsent) {
    for (const auto seconds :
         {std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::min()}) {
        const StoppedClock clock(0, ZRMBootTime{seconds, 999999});
        EXPECT_EQ(ZRMDateTimeUtils::getStartDateTime(clock), std::nullopt);
    }
}

TEST(ZRMDateTimeUtils, UptimeIsTheTimeSinceTheBoot) {
    EXPECT_EQ(ZRMDateTimeUtils::getUptime(StoppedClock(1700000010.5, kBoot)), 10377);
    EXPECT_EQ(ZRMDateTimeUtils::getUptime(StoppedClock(1699999999, kBoot)), -1123);
}

TEST(ZRMDateTimeUtils, UptimeCutsFractionsOfAMillisecond) {
    EXPECT_EQ(ZRMDateTimeUtils::getUptime(StoppedClock(1.00075, ZRMBootTime{1, 0})), 0);
}

TEST(ZRMDateTimeUtils, UptimeWithoutABootTimeIsTheTimeSince1970) {
    EXPECT_EQ(ZRMDateTimeUtils::getUptime(StoppedClock(1700000010.5, std::nullopt)), 1700000010500);
}
