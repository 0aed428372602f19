#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMStatisticsTime.h"
#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMStatisticsDeviceTest.h"

using ZRMStatisticsTimeTest = ZRMStatisticsDeviceTest;

TEST_F(ZRMStatisticsTimeTest, IsTheLocalTimeWithItsFractionWhileTheServersIsNotKnown) {
    EXPECT_EQ(zrm_statisticsTimestamp(*unknownServerTime(), {1234.75}), 1234.75);
}

TEST_F(ZRMStatisticsTimeTest, IsTheServersTimeInWholeSeconds) {
    const auto provider = knownServerTime();
    device_.advanceBy(0.123);
    ASSERT_EQ(provider->getTime(), 1700000000123);
    EXPECT_EQ(zrm_statisticsTimestamp(*provider, {1234.75}), 1700000000.0);
}
