#include <algorithm>

#include <gmock/gmock.h>
#include <net/if.h>

#include "ZRMPlatform/Linux/ZRMLinuxNetworkInterfaces.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

namespace {

constexpr unsigned kInUse = IFF_UP | IFF_RUNNING;

class ZRMLinuxNetworkInterfacesTest : public testing::Test {
  protected:
    // A wireless interface, a modem, and what has no device behind it.
    ZRMLinuxNetworkInterfacesTest() {
        directory_.writeFile("lo/ifindex", "1\n");
        directory_.writeFile("lo/type", "772\n");
        directory_.writeFile("wlan0/ifindex", "2\n");
        directory_.writeFile("wlan0/device/vendor", "");
        directory_.writeFile("wwan0/ifindex", "3\n");
        directory_.writeFile("wwan0/device/vendor", "");
        directory_.writeFile("tun0/ifindex", "4\n");
    }
    ZRMLinuxNetworkInterfaces interfaces(
        std::optional<std::vector<ZRMLinuxInterfaceEntry>> entries) {
        return ZRMLinuxNetworkInterfaces(ZRMLinuxInterfaces(directory_.path()),
                                         [entries = std::move(entries)] { return entries; });
    }

    ZRMTestDirectory directory_;
};

using Addresses = std::vector<ZRMInterfaceAddress>;
using Names = std::vector<std::string>;

}  // namespace

TEST_F(ZRMLinuxNetworkInterfacesTest, AddressesCarryTheLibrarysNamesInTheSystemsOrder) {
    EXPECT_EQ(interfaces({{{"lo", kInUse, {127, 0, 0, 1}},
                           {"wwan0", kInUse, {10, 0, 0, 7}},
                           {"wlan0", kInUse, {192, 168, 1, 20}},
                           {"tun0", kInUse, {10, 8, 0, 2}},
                           {"wlan0", kInUse, ZRMData(16, 0xFE)}}})
                  .addresses(),
              (Addresses{{"lo", {127, 0, 0, 1}},
                         {"pdp_ip0", {10, 0, 0, 7}},
                         {"en0", {192, 168, 1, 20}},
                         {"tun0", {10, 8, 0, 2}},
                         {"en0", ZRMData(16, 0xFE)}}));
}

TEST_F(ZRMLinuxNetworkInterfacesTest, EntriesWithoutAnIpAddressAreLeftOut) {
    EXPECT_EQ(interfaces({{{"wlan0", kInUse, {}}, {"wlan0", 0, {192, 168, 1, 20}}}}).addresses(),
              (Addresses{{"en0", {192, 168, 1, 20}}}));
    EXPECT_EQ(interfaces({std::vector<ZRMLinuxInterfaceEntry>()}).addresses(), Addresses{});
}

TEST_F(ZRMLinuxNetworkInterfacesTest, ALabelledAddressIsTheInterfaces) {
    const auto labelled = interfaces({{{"wlan0", kInUse, {}}, {"wlan0:1", kInUse, {10, 0, 0, 1}}}});
    EXPECT_EQ(labelled.addresses(), (Addresses{{"en0", {10, 0, 0, 1}}}));
    EXPECT_EQ(labelled.scopedInterfaceNames(), Names{"wlan0"});
}

TEST_F(ZRMLinuxNetworkInterfacesTest, TrafficMayLeaveByWhatIsUpAndRunning) {
    EXPECT_EQ(interfaces({{{"lo", kInUse | IFF_LOOPBACK, {}},
                           {"wlan0", kInUse | IFF_BROADCAST, {}},
                           {"wwan0", IFF_UP, {}},
                           {"eth1", IFF_RUNNING, {}},
                           {"tun0", kInUse | IFF_POINTOPOINT, {}},
                           {"tap0", kInUse, {}},
                           {"ppp0", kInUse, {}},
                           {"wg0", kInUse, {}},
                           {"tun0", kInUse | IFF_POINTOPOINT, {10, 8, 0, 2}}}})
                  .scopedInterfaceNames(),
              (Names{"wlan0", "tun0", "tap0", "ppp0", "wg0"}));
}

TEST_F(ZRMLinuxNetworkInterfacesTest, NamesThatAreNotUtf8AreRepaired) {
    const auto odd = interfaces({{{"t\xFFn0", kInUse, {10, 0, 0, 1}}}});
    EXPECT_EQ(odd.addresses(), (Addresses{{"t\xEF\xBF\xBDn0", {10, 0, 0, 1}}}));
    EXPECT_EQ(odd.scopedInterfaceNames(), Names{"t\xEF\xBF\xBDn0"});
}

TEST_F(ZRMLinuxNetworkInterfacesTest, WithoutAListEverythingIsAbsent) {
    EXPECT_EQ(interfaces(std::nullopt).addresses(), std::nullopt);
    EXPECT_EQ(interfaces(std::nullopt).scopedInterfaceNames(), std::nullopt);
}

TEST_F(ZRMLinuxNetworkInterfacesTest, WithoutADeviceTreeNamesAreTheSystems) {
    const ZRMLinuxNetworkInterfaces blind(ZRMLinuxInterfaces(directory_.below("none")), [] {
        return std::vector<ZRMLinuxInterfaceEntry>{{"wlan0", kInUse, {192, 168, 1, 20}}};
    });
    EXPECT_EQ(blind.addresses(), (Addresses{{"wlan0", {192, 168, 1, 20}}}));
}

TEST(ZRMLinuxNetworkInterfaces, TheMachinesOwnListHoldsItsLoopback) {
    const ZRMLinuxNetworkInterfaces interfaces{ZRMLinuxInterfaces()};
    const auto addresses = interfaces.addresses();
    ASSERT_TRUE(addresses);
    EXPECT_THAT(*addresses, testing::Contains(ZRMInterfaceAddress{"lo", {127, 0, 0, 1}}));
    const auto names = interfaces.scopedInterfaceNames();
    ASSERT_TRUE(names);
    EXPECT_THAT(*names, testing::Not(testing::Contains("lo")));
}
