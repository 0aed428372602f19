#include <chrono>
#include <cmath>

#include <gtest/gtest.h>

#include "ZRMPlatform/Linux/ZRMLinuxClock.h"
#include "ZRMPlatform/Linux/ZRMLinuxWallTime.h"

TEST(ZRMLinuxClock, TellsTheSystemsWallTime) {
    const auto before = std::chrono::system_clock::now();
    const auto told = zrm_timePoint(ZRMLinuxClock().now());
    const auto after = std::chrono::system_clock::now();
    // A double holds the seconds of today to a quarter of a microsecond.
    EXPECT_GE(told, before - std::chrono::microseconds(1));
    EXPECT_LE(told, after + std::chrono::microseconds(1));
}

TEST(ZRMLinuxClock, UptimeNeverGoesBack) {
    const ZRMLinuxClock clock;
    double last = clock.uptimeSeconds();
    EXPECT_GT(last, 0);
    for (int round = 0; round < 1000; ++round) {
        const double next = clock.uptimeSeconds();
        EXPECT_GE(next, last);
        last = next;
    }
}

TEST(ZRMLinuxClock, BootTimeAndUptimeMakeUpTheWallTime) {
    const ZRMLinuxClock clock;
    const auto boot = clock.bootTime();
    ASSERT_TRUE(boot.has_value());
    EXPECT_GE(boot->microseconds, 0);
    EXPECT_LT(boot->microseconds, 1'000'000);
    const double bootSeconds = static_cast<double>(boot->seconds) + boot->microseconds / 1e6;
    EXPECT_NEAR(bootSeconds + clock.uptimeSeconds(), clock.now().secondsSince1970, 5.0);
}

TEST(ZRMLinuxWallTime, MomentsBeyondTheClockBecomeTheNearestOneItHolds) {
    EXPECT_EQ(zrm_timePoint({-5}).time_since_epoch().count(), 0);
    EXPECT_EQ(zrm_timePoint({std::nan("")}).time_since_epoch().count(), 0);
    EXPECT_EQ(zrm_timePoint({HUGE_VAL}), zrm_timePoint({9e9}));
    EXPECT_EQ(zrm_timePointAfter(HUGE_VAL), zrm_timePoint({9e9}));
    EXPECT_EQ(zrm_timePoint({1.5}).time_since_epoch(), std::chrono::milliseconds(1500));
}

TEST(ZRMLinuxWallTime, ADelayThatIsNoPositiveNumberIsNone) {
    const auto before = std::chrono::system_clock::now();
    const auto minusOne = zrm_timePointAfter(-1);
    const auto notANumber = zrm_timePointAfter(std::nan(""));
    const auto after = std::chrono::system_clock::now();
    for (const auto moment : {minusOne, notANumber}) {
        EXPECT_GE(moment, before);
        EXPECT_LE(moment, after);
    }
}
