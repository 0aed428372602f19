#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Location/ZRMWifiNodeDescriptor.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedHardware.h"

namespace {

TEST(ZRMWifiNodeDescriptor, NamesTheNetworkOfTheMoment) {
    ZRMSimulatedWifi wifi;
    wifi.network = ZRMWifiNetwork{"Café Central", "a4:5e:60:01:02:03"};
    const auto node = ZRMWifiNodeDescriptor::currentWiFiNodeDescriptor(wifi);
    ASSERT_TRUE(node);
    EXPECT_EQ(node->ssid(), "Café Central");
    EXPECT_EQ(node->bssid(), "a4:5e:60:01:02:03");
}

TEST(ZRMWifiNodeDescriptor, IsAbsentWithoutANetwork) {
    ZRMSimulatedWifi wifi;
    wifi.network = std::nullopt;
    EXPECT_EQ(ZRMWifiNodeDescriptor::currentWiFiNodeDescriptor(wifi), std::nullopt);
}

TEST(ZRMWifiNodeDescriptor, KeepsWhatIsKnownOfANetworkAlone) {
    ZRMSimulatedWifi wifi;
    wifi.network = ZRMWifiNetwork{std::nullopt, "a4:5e:60:01:02:03"};
    EXPECT_EQ(ZRMWifiNodeDescriptor::currentWiFiNodeDescriptor(wifi),
              ZRMWifiNodeDescriptor(std::nullopt, "a4:5e:60:01:02:03"));
}

TEST(ZRMWifiNodeDescriptor, ReadsItsKeysFromNetworkInformation) {
    EXPECT_EQ(ZRMWifiNodeDescriptor::wiFiNodeDescriptorFromNetworkInfo(
                  {{"SSID", "net"}, {"BSSID", "0:1:2:3:4:5"}, {"SSIDDATA", "x"}}),
              ZRMWifiNodeDescriptor("net", "0:1:2:3:4:5"));
}

TEST(ZRMWifiNodeDescriptor, LeavesAbsentWhatIsMissingOrNoText) {
    EXPECT_EQ(ZRMWifiNodeDescriptor::wiFiNodeDescriptorFromNetworkInfo({{"ssid", "net"}}),
              ZRMWifiNodeDescriptor(std::nullopt, std::nullopt));
    EXPECT_EQ(
        ZRMWifiNodeDescriptor::wiFiNodeDescriptorFromNetworkInfo({{"SSID", 7}, {"BSSID", nullptr}}),
        ZRMWifiNodeDescriptor(std::nullopt, std::nullopt));
}

}  // namespace
