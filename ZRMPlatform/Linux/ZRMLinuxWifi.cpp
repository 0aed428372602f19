#include "ZRMPlatform/Linux/ZRMLinuxWifi.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include <linux/netlink.h>
#include <linux/nl80211.h>

#include "ZRMPlatform/Linux/ZRMLinuxGenericNetlink.h"
#include "ZRMPlatform/Linux/ZRMLinuxNetlink.h"
#include "ZRMPlatform/Linux/ZRMLinuxSystemText.h"

namespace {

using Bytes = std::span<const std::uint8_t>;

// What a beacon tells, element by element: a number, a length, and as many bytes.
std::optional<std::string> networkNameIn(Bytes elements) {
    constexpr std::uint8_t kNameElement = 0;
    constexpr std::size_t kLongestName = 32;
    while (elements.size() >= 2) {
        const std::size_t length = elements[1];
        if (elements.size() < 2 + length) {
            return std::nullopt;
        }
        const auto value = elements.subspan(2, length);
        if (elements[0] == kNameElement) {
            const bool isHidden = std::ranges::all_of(value, [](auto each) { return each == 0; });
            return isHidden || value.size() > kLongestName
                       ? std::nullopt
                       : std::optional(zrm_wellFormedText(std::string_view(
                             reinterpret_cast<const char*>(value.data()), value.size())));
        }
        elements = elements.subspan(2 + length);
    }
    return std::nullopt;
}

std::optional<std::string> hardwareAddressIn(Bytes bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    if (bytes.size() != 6) {
        return std::nullopt;
    }
    std::string text;
    for (const auto byte : bytes) {
        text.append(text.empty() ? "" : ":");
        text += kDigits[byte >> 4U];
        text += kDigits[byte & 0x0FU];
    }
    return text;
}

bool isAttached(Bytes status) {
    std::uint32_t number = 0;
    if (status.size() != sizeof number) {
        return false;
    }
    std::memcpy(&number, status.data(), sizeof number);
    return number == NL80211_BSS_STATUS_ASSOCIATED || number == NL80211_BSS_STATUS_IBSS_JOINED;
}

}  // namespace

std::optional<ZRMWifiNetwork> zrm_attachedNetwork(Bytes attributes) {
    ZRMWifiNetwork network;
    bool isCurrent = false;
    zrm_forEachAttribute(attributes, [&](std::uint16_t outer, Bytes nested) {
        if (outer != NL80211_ATTR_BSS) {
            return;
        }
        zrm_forEachAttribute(nested, [&](std::uint16_t type, Bytes value) {
            if (type == NL80211_BSS_BSSID) {
                network.bssid = hardwareAddressIn(value);
            } else if (type == NL80211_BSS_INFORMATION_ELEMENTS) {
                network.ssid = networkNameIn(value);
            } else if (type == NL80211_BSS_STATUS) {
                isCurrent = isAttached(value);
            }
        });
    });
    return isCurrent ? std::optional(network) : std::nullopt;
}

std::optional<ZRMWifiNetwork> zrm_networkOfInterface(std::uint32_t index) {
    const auto family = zrm_genericFamily(NL80211_GENL_NAME);
    if (!family) {
        return std::nullopt;
    }
    ZRMLinuxGenericRequest request(*family, NL80211_CMD_GET_SCAN, NLM_F_DUMP);
    request.add(NL80211_ATTR_IFINDEX,
                Bytes(reinterpret_cast<const std::uint8_t*>(&index), sizeof index));
    std::optional<ZRMWifiNetwork> found;
    request.ask([&found](Bytes attributes) {
        if (!found) {
            found = zrm_attachedNetwork(attributes);
        }
    });
    return found;
}

ZRMLinuxWifi::ZRMLinuxWifi(ZRMLinuxInterfaces interfaces, NetworkOfInterface networkOfInterface)
    : interfaces_(std::move(interfaces)), networkOfInterface_(std::move(networkOfInterface)) {}

std::optional<ZRMWifiNetwork> ZRMLinuxWifi::currentNetwork() const {
    for (const auto& interface : interfaces_.all()) {
        if (interface.isWireless) {
            if (auto network = networkOfInterface_(interface.index)) {
                return network;
            }
        }
    }
    return std::nullopt;
}
