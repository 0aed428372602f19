#include "ZRMCloudKit/ZRMCloudKit_Lib/Location/ZRMWifiNodeDescriptor.h"

namespace {

std::optional<std::string> textUnder(const ZRMDictionary& info, const char* key) {
    const auto* const value = info.if_contains(key);
    const auto* const text = value != nullptr ? value->if_string() : nullptr;
    return text != nullptr ? std::optional<std::string>(*text) : std::nullopt;
}

}  // namespace

std::optional<ZRMWifiNodeDescriptor> ZRMWifiNodeDescriptor::currentWiFiNodeDescriptor(
    const ZRMWifi& wifi) {
    const auto network = wifi.currentNetwork();
    return network ? std::optional(ZRMWifiNodeDescriptor(network->ssid, network->bssid))
                   : std::nullopt;
}

ZRMWifiNodeDescriptor ZRMWifiNodeDescriptor::wiFiNodeDescriptorFromNetworkInfo(
    const ZRMDictionary& info) {
    return {textUnder(info, "SSID"), textUnder(info, "BSSID")};
}
