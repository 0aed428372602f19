#include <cstring>

#include <gtest/gtest.h>
#include <linux/netlink.h>
#include <linux/nl80211.h>
#include <net/if.h>

#include "ZRMPlatform/Linux/ZRMLinuxWifi.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const auto& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

// Attribute of a message, with its padding.
Bytes attribute(std::uint16_t type, const Bytes& value) {
    const nlattr header{.nla_len = static_cast<std::uint16_t>(NLA_HDRLEN + value.size()),
                        .nla_type = type};
    Bytes bytes(sizeof header);
    std::memcpy(bytes.data(), &header, sizeof header);
    bytes.insert(bytes.end(), value.begin(), value.end());
    bytes.resize(static_cast<std::size_t>(NLA_ALIGN(bytes.size())));
    return bytes;
}

Bytes number(std::uint32_t value) {
    Bytes bytes(sizeof value);
    std::memcpy(bytes.data(), &value, sizeof value);
    return bytes;
}

Bytes element(std::uint8_t type, std::string_view value) {
    Bytes bytes{type, static_cast<std::uint8_t>(value.size())};
    bytes.insert(bytes.end(), value.begin(), value.end());
    return bytes;
}

const Bytes kAddress = {0xa4, 0x5e, 0x60, 0x01, 0x02, 0xff};

Bytes messageOf(const Bytes& parts) {
    return joined({attribute(NL80211_ATTR_GENERATION, number(7)),
                   attribute(NL80211_ATTR_BSS | NLA_F_NESTED, parts)});
}

Bytes network(const Bytes& elements, std::uint32_t status = NL80211_BSS_STATUS_ASSOCIATED) {
    return messageOf(joined({attribute(NL80211_BSS_BSSID, kAddress),
                             attribute(NL80211_BSS_INFORMATION_ELEMENTS, elements),
                             attribute(NL80211_BSS_STATUS, number(status))}));
}

std::optional<std::string> nameIn(const Bytes& elements) {
    const auto found = zrm_attachedNetwork(network(elements));
    EXPECT_TRUE(found);
    EXPECT_EQ(found->bssid, "a4:5e:60:01:02:ff");
    return found->ssid;
}

}  // namespace

TEST(ZRMLinuxWifi, TheAttachedNetworkHasItsNameAndAddress) {
    const ZRMWifiNetwork expected{"Café Central", "a4:5e:60:01:02:ff"};
    const auto name = joined({element(1, "\x82\x84"), element(0, "Café Central")});
    EXPECT_EQ(zrm_attachedNetwork(network(name)), expected);
    EXPECT_EQ(zrm_attachedNetwork(network(name, NL80211_BSS_STATUS_IBSS_JOINED)), expected);
}

TEST(ZRMLinuxWifi, ANetworkThatIsOnlyHeardIsNotTheAttachedOne) {
    const auto name = element(0, "Neighbour");
    EXPECT_EQ(zrm_attachedNetwork(network(name, NL80211_BSS_STATUS_AUTHENTICATED)), std::nullopt);
    EXPECT_EQ(
        zrm_attachedNetwork(messageOf(joined({attribute(NL80211_BSS_BSSID, kAddress),
                                              attribute(NL80211_BSS_INFORMATION_ELEMENTS, name)}))),
        std::nullopt);
    EXPECT_EQ(zrm_attachedNetwork(messageOf(joined(
                  {attribute(NL80211_BSS_BSSID, kAddress), attribute(NL80211_BSS_STATUS, {1})}))),
              std::nullopt);
    EXPECT_EQ(zrm_attachedNetwork(attribute(NL80211_BSS_STATUS, number(1))), std::nullopt);
    EXPECT_EQ(zrm_attachedNetwork({}), std::nullopt);
}

TEST(ZRMLinuxWifi, ANameThatIsNotUtf8IsRepaired) {
    EXPECT_EQ(nameIn(element(0, "Caf\xE9")), "Caf\xEF\xBF\xBD");
    EXPECT_EQ(nameIn(element(0, std::string_view("a\0b", 3))), std::string("a\0b", 3));
    EXPECT_EQ(nameIn(element(0, std::string(32, 'x'))), std::string(32, 'x'));
}

TEST(ZRMLinuxWifi, AHiddenNameIsAbsent) {
    EXPECT_EQ(nameIn(element(0, "")), std::nullopt);
    EXPECT_EQ(nameIn(element(0, std::string(8, '\0'))), std::nullopt);
    EXPECT_EQ(nameIn({}), std::nullopt);
}

TEST(ZRMLinuxWifi, ElementsThatDoNotFitNameNothing) {
    EXPECT_EQ(nameIn({0}), std::nullopt);
    EXPECT_EQ(nameIn({0, 5, 'a', 'b'}), std::nullopt);
    EXPECT_EQ(nameIn({1, 200, 0, 1, 'a'}), std::nullopt);
    EXPECT_EQ(nameIn(element(0, std::string(33, 'x'))), std::nullopt);
}

TEST(ZRMLinuxWifi, AnAddressOfAnotherLengthIsAbsent) {
    for (const Bytes& odd : {Bytes(), Bytes(5), Bytes(8)}) {
        const auto found = zrm_attachedNetwork(messageOf(
            joined({attribute(NL80211_BSS_BSSID, odd), attribute(NL80211_BSS_STATUS, number(1))})));
        EXPECT_EQ(found, (ZRMWifiNetwork{std::nullopt, std::nullopt}));
    }
}

TEST(ZRMLinuxWifi, AsksTheWirelessInterfacesUntilOneIsAttached) {
    const ZRMTestDirectory directory;
    for (const auto& [name, index] : {std::pair("wlan0", "5"), {"wlan1", "6"}, {"wlan2", "7"}}) {
        directory.writeFile(std::string(name) + "/ifindex", index);
        directory.writeFile(std::string(name) + "/uevent", "DEVTYPE=wlan\n");
    }
    directory.writeFile("eth0/ifindex", "2");
    std::vector<std::uint32_t> asked;
    const ZRMLinuxWifi wifi(ZRMLinuxInterfaces(directory.path()), [&](std::uint32_t index) {
        asked.push_back(index);
        return index == 6 ? std::optional(ZRMWifiNetwork{"home", "a4:5e:60:01:02:03"})
                          : std::nullopt;
    });
    EXPECT_EQ(wifi.currentNetwork(), (ZRMWifiNetwork{"home", "a4:5e:60:01:02:03"}));
    EXPECT_EQ(asked, (std::vector<std::uint32_t>{5, 6}));
}

TEST(ZRMLinuxWifi, WithoutAWirelessInterfaceThereIsNoNetwork) {
    const ZRMTestDirectory directory;
    directory.writeFile("eth0/ifindex", "2");
    int asked = 0;
    const ZRMLinuxWifi wifi(ZRMLinuxInterfaces(directory.path()), [&asked](auto) {
        ++asked;
        return ZRMWifiNetwork();
    });
    EXPECT_EQ(wifi.currentNetwork(), std::nullopt);
    EXPECT_EQ(asked, 0);
}

TEST(ZRMLinuxWifi, TheKernelKnowsNoNetworkOfTheLoopback) {
    EXPECT_EQ(zrm_networkOfInterface(if_nametoindex("lo")), std::nullopt);
    EXPECT_EQ(zrm_networkOfInterface(0), std::nullopt);
}
