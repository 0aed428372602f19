#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitProvider.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

TEST(ZRMCloudKitProvider, ReturnsTheFirstCoreWhateverTheLaterConfigurations) {
    ZRMSimulatedDevice device;
    const ZRMScopedPlatform installed(device);
    auto configuration = ZRMCloudKitConfiguration::configuration();
    configuration.dataDirectory = "/device/first";
    const auto provider = ZRMCloudKitProvider::sharedInstance();
    const auto first = provider->cloudKitWithConfiguration(configuration, nullptr);
    ASSERT_TRUE(first);
    configuration.dataDirectory = "/device/second";
    EXPECT_EQ(provider->cloudKitWithConfiguration(configuration, nullptr), first);
    EXPECT_FALSE(device.disk().holdsDirectory("/device/second"));
}

TEST(ZRMCloudKitProvider, IsOneInstanceAProcess) {
    ZRMSimulatedDevice device;
    const ZRMScopedPlatform installed(device);
    const std::weak_ptr<ZRMCloudKitProvider> before = ZRMCloudKitProvider::sharedInstance();
    EXPECT_EQ(ZRMCloudKitProvider::sharedInstance(), before.lock());
    device.restartProcess();
    EXPECT_NE(ZRMCloudKitProvider::sharedInstance(), before.lock());
}

}  // namespace
