// What the ports about network interfaces and wireless networks promise.
#include <set>

#include <gmock/gmock.h>

#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"
#include "ZRMPlatform/Linux/ZRMLinuxSystemText.h"

namespace {

class ZRMNetworkInterfacesContract : public ZRMContract {};

bool isNameText(const std::string& text) {
    return zrm_wellFormedText(text) == text;
}

}  // namespace

TEST_P(ZRMNetworkInterfacesContract, AnAddressIsOfIpv4OrIpv6AndOfANamedInterface) {
    const auto addresses = platform()->networkInterfaces->addresses();
    ASSERT_TRUE(addresses);
    EXPECT_FALSE(addresses->empty());
    for (const auto& each : *addresses) {
        EXPECT_THAT(each.address, testing::AnyOf(testing::SizeIs(4), testing::SizeIs(16)));
        EXPECT_FALSE(each.interfaceName.empty());
        EXPECT_TRUE(isNameText(each.interfaceName));
    }
}

TEST_P(ZRMNetworkInterfacesContract, TheFirstInterfaceIsThatOfTheLinkLayer) {
    const auto addresses = platform()->networkInterfaces->addresses();
    ASSERT_TRUE(addresses);
    for (const std::string name : {"en0", "pdp_ip0"}) {
        const bool hasAddress =
            std::ranges::find(*addresses, name, &ZRMInterfaceAddress::interfaceName) !=
            addresses->end();
        EXPECT_TRUE(!hasAddress || platform()->linkLayer->interfaceIndex(name) != 0) << name;
    }
}

TEST_P(ZRMNetworkInterfacesContract, EveryInterfaceThatTrafficMayLeaveByIsNamedOnce) {
    const auto names = platform()->networkInterfaces->scopedInterfaceNames();
    ASSERT_TRUE(names);
    const std::set<std::string> distinct(names->begin(), names->end());
    EXPECT_EQ(distinct.size(), names->size());
    EXPECT_TRUE(std::ranges::all_of(*names, &isNameText));
    EXPECT_FALSE(distinct.contains(""));
}

TEST_P(ZRMNetworkInterfacesContract, AWirelessNetworkHasATextAndAnAddress) {
    const auto network = platform()->wifi->currentNetwork();
    const auto ssid = network ? network->ssid : std::nullopt;
    const auto bssid = network ? network->bssid : std::nullopt;
    EXPECT_TRUE(!ssid || (!ssid->empty() && isNameText(*ssid)));
    EXPECT_THAT(bssid.value_or("00:00:00:00:00:00"),
                testing::MatchesRegex("([0-9a-f]{2}:){5}[0-9a-f]{2}"));
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMNetworkInterfacesContract, zrm_contractBodies(),
                         zrm_contractBodyName);
