#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitConfiguration.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

TEST(ZRMCloudKitConfiguration, DescribesADemonstrationByDefault) {
    ZRMSimulatedDevice device;
    const ZRMScopedPlatform installed(device);
    const auto configuration = ZRMCloudKitConfiguration::configuration();
    EXPECT_EQ(configuration.clientId, "demosite");
    EXPECT_EQ(configuration.execSessionId, "00000000-0000-0000-0000-000000000000");
    EXPECT_EQ(configuration.dataDirectory, device.platform()->directories->documents());
    EXPECT_EQ(configuration.productName, "ZRMCloudKit");
    EXPECT_EQ(configuration.productVersion, "0.0.1");
    EXPECT_EQ(configuration.statisticsUrl, "https://localhost:8443/stat");
    EXPECT_EQ(configuration.secureDeviceTagUrl, "https://localhost:8443/zwjsqd");
    EXPECT_TRUE(configuration.jwsRootCertificate.empty());
    EXPECT_EQ(configuration.applicationMd5StatisticInterval, 86400);
    EXPECT_FALSE(configuration.alwaysSendTouchIdChangedStatistic);
    EXPECT_TRUE(configuration.appliedSettings.empty());
}

}  // namespace
