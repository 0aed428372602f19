// What ZRMClock.h promises.
#include <cmath>

#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"

namespace {

class ZRMClockContract : public ZRMContract {
  protected:
    void letPass(double seconds) {
        const auto condition = platform()->executor->makeCondition();
        const ZRMDate until = platform()->clock->now().addingSeconds(seconds);
        condition->lock();
        while (condition->waitUntil(until)) {
        }
        condition->unlock();
    }
};

}  // namespace

TEST_P(ZRMClockContract, TellsAMomentOfThisAge) {
    constexpr double kYear2020 = 1577836800;
    constexpr double kYear2120 = 4733510400;
    EXPECT_GT(platform()->clock->now().secondsSince1970, kYear2020);
    EXPECT_LT(platform()->clock->now().secondsSince1970, kYear2120);
}

TEST_P(ZRMClockContract, WallTimeAndUptimeAdvanceTogether) {
    const auto clock = platform()->clock;
    const ZRMDate wall = clock->now();
    const double uptime = clock->uptimeSeconds();
    letPass(0.05);
    EXPECT_GE(clock->now().secondsSince(wall), 0.049);
    EXPECT_GE(clock->uptimeSeconds() - uptime, 0.049);
}

TEST_P(ZRMClockContract, UptimeNeverGoesBack) {
    const auto clock = platform()->clock;
    double last = clock->uptimeSeconds();
    EXPECT_GE(last, 0);
    for (int reading = 0; reading < 10000; ++reading) {
        const double now = clock->uptimeSeconds();
        ASSERT_GE(now, last);
        last = now;
    }
}

TEST_P(ZRMClockContract, BootTimeIsUptimeAgo) {
    const auto clock = platform()->clock;
    const auto boot = clock->bootTime();
    ASSERT_TRUE(boot);
    EXPECT_GE(boot->microseconds, 0);
    EXPECT_LT(boot->microseconds, 1000000);
    const double expected = clock->now().secondsSince1970 - clock->uptimeSeconds();
    EXPECT_LT(std::abs(static_cast<double>(boot->seconds) - expected), 3);
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMClockContract, zrm_contractBodies(), zrm_contractBodyName);
