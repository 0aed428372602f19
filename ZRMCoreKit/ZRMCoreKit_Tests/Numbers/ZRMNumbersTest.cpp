#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Numbers/ZRMNumbers.h"

TEST(ZRMNumbers, TruncateTowardZero) {
    EXPECT_EQ(zrm_int64FromDouble(1.9), 1);
    EXPECT_EQ(zrm_int64FromDouble(-1.9), -1);
    EXPECT_EQ(zrm_int64FromDouble(0), 0);
}

TEST(ZRMNumbers, SaturateBeyondTheRange) {
    constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
    constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(zrm_int64FromDouble(9223372036854775808.0), kMost);
    EXPECT_EQ(zrm_int64FromDouble(-9223372036854775808.0), kLeast);
    EXPECT_EQ(zrm_int64FromDouble(std::numeric_limits<double>::infinity()), kMost);
    EXPECT_EQ(zrm_int64FromDouble(-std::numeric_limits<double>::infinity()), kLeast);
}

TEST(ZRMNumbers, WhatIsNoNumberIsZero) {
    EXPECT_EQ(zrm_int64FromDouble(std::numeric_limits<double>::quiet_NaN()), 0);
}
