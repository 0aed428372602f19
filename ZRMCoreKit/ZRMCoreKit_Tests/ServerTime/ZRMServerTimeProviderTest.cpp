#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/ServerTime/ZRMServerTimeProvider.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

constexpr const char* kDate = "Tue, 05 Mar 2024 07:08:09 GMT";
constexpr std::int64_t kDateMilliseconds = 1709622489000;

class ZRMServerTimeProviderTest : public testing::Test {
  protected:
    ZRMSimulatedDevice device_;
    const ZRMScopedPlatform installed_{device_};
    ZRMServerTimeProvider provider_{device_.platform()->clock};
};

TEST_F(ZRMServerTimeProviderTest, IsUnknownBeforeAnyDate) {
    EXPECT_FALSE(provider_.isValid());
    EXPECT_EQ(provider_.getTime(), 0);
}

TEST_F(ZRMServerTimeProviderTest, TakesTheDateInWholeSeconds) {
    device_.advanceBy(0.75);
    provider_.setTime(kDate);
    EXPECT_TRUE(provider_.isValid());
    EXPECT_EQ(provider_.getTime(), kDateMilliseconds);
}

TEST_F(ZRMServerTimeProviderTest, AdvancesWithTheLocalUptime) {
    provider_.setTime(kDate);
    device_.advanceBy(12.5);
    EXPECT_EQ(provider_.getTime(), kDateMilliseconds + 12500);
}

TEST_F(ZRMServerTimeProviderTest, TheFirstGoodDateWins) {
    provider_.setTime(kDate);
    provider_.setTime("Wed, 06 Mar 2024 07:08:09 GMT");
    EXPECT_EQ(provider_.getTime(), kDateMilliseconds);
}

TEST_F(ZRMServerTimeProviderTest, ATextThatIsNoDateLeavesItUnknown) {
    for (const char* text :
         {"yesterday", "", " ", "2024-03-05T07:08:09Z", "Tue, 05 Mar 2024 07:08:09"}) {
        provider_.setTime(text);
        EXPECT_FALSE(provider_.isValid()) << text;
        EXPECT_EQ(provider_.getTime(), 0) << text;
    }
    provider_.setTime(kDate);
    EXPECT_EQ(provider_.getTime(), kDateMilliseconds) << "a good one still counts";
}

TEST_F(ZRMServerTimeProviderTest, ADateBefore1970IsKnownToo) {
    provider_.setTime("Wed, 31 Dec 1969 23:59:58 GMT");
    EXPECT_TRUE(provider_.isValid());
    EXPECT_EQ(provider_.getTime(), -2000);
}

TEST_F(ZRMServerTimeProviderTest, TheEpochItselfCountsAsUnknown) {
    provider_.setTime("Thu, 01 Jan 1970 00:00:00 GMT");
    EXPECT_FALSE(provider_.isValid());
    EXPECT_EQ(provider_.getTime(), 0);
}

}  // namespace
