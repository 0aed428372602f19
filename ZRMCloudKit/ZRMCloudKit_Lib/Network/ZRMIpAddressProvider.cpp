#include "ZRMCloudKit/ZRMCloudKit_Lib/Network/ZRMIpAddressProvider.h"

#include <array>
#include <utility>

#include <arpa/inet.h>

namespace {

constexpr const char* kWifiInterface = "en0";
constexpr const char* kCellularInterface = "pdp_ip0";

}  // namespace

ZRMIpAddressProvider::ZRMIpAddressProvider(std::shared_ptr<const ZRMNetworkInterfaces> interfaces)
    : interfaces_(std::move(interfaces)) {}

std::optional<ZRMIpAddress> ZRMIpAddressProvider::currentIpAddressV4() const {
    return currentIpAddress(ZRMIpAddressType::IPv4);
}

std::optional<ZRMIpAddress> ZRMIpAddressProvider::currentIpAddressV6() const {
    return currentIpAddress(ZRMIpAddressType::IPv6);
}

std::optional<ZRMIpAddress> ZRMIpAddressProvider::currentIpAddress(ZRMIpAddressType type) const {
    const auto addresses = interfaces_->addresses();
    if (!addresses) {
        return std::nullopt;
    }
    std::optional<std::string> chosen;
    for (const auto& each : *addresses) {
        if (ZRMIpAddress::typeOfIpAddressData(each.address) != type) {
            continue;
        }
        auto text = ipAddressStringFromInterface(each);
        if (isEmptyIpAddress(text)) {
            continue;
        }
        if (each.interfaceName == kWifiInterface) {
            chosen = std::move(text);
            break;
        }
        if (each.interfaceName == kCellularInterface) {
            chosen = std::move(text);
        }
    }
    return chosen ? ZRMIpAddress::ipAddressWithString(*chosen) : std::nullopt;
}

bool ZRMIpAddressProvider::isEmptyIpAddress(const std::optional<std::string>& text) {
    return !text || *text == "0.0.0.0" || *text == "::";
}

std::optional<std::string> ZRMIpAddressProvider::ipAddressStringFromInterface(
    const ZRMInterfaceAddress& interface) {
    const auto type = ZRMIpAddress::typeOfIpAddressData(interface.address);
    if (type == ZRMIpAddressType::Unknown) {
        return std::nullopt;
    }
    std::array<char, INET6_ADDRSTRLEN> room{};
    const auto* const text =
        ::inet_ntop(type == ZRMIpAddressType::IPv4 ? AF_INET : AF_INET6, interface.address.data(),
                    room.data(), static_cast<socklen_t>(room.size()));
    return text != nullptr ? std::optional<std::string>(text) : std::nullopt;
}
