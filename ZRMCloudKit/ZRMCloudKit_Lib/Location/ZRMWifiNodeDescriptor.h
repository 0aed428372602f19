// The wireless network that the device is attached to.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"
#include "ZRMPlatform/Ports/ZRMNetworkInterfaces.h"

// An immutable value.
class ZRMWifiNodeDescriptor {
  public:
    // What is not known is absent.
    ZRMWifiNodeDescriptor(std::optional<std::string> ssid, std::optional<std::string> bssid)
        : ssid_(std::move(ssid)), bssid_(std::move(bssid)) {}

    // What is known at once; an answer that would have to be waited for is not used. Absent without
    // a network. From any thread.
    static std::optional<ZRMWifiNodeDescriptor> currentWiFiNodeDescriptor(const ZRMWifi& wifi);
    // From the texts under "SSID" and "BSSID".
    static ZRMWifiNodeDescriptor wiFiNodeDescriptorFromNetworkInfo(const ZRMDictionary& info);

    [[nodiscard]] const std::optional<std::string>& ssid() const { return ssid_; }
    [[nodiscard]] const std::optional<std::string>& bssid() const { return bssid_; }

    friend bool operator==(const ZRMWifiNodeDescriptor&, const ZRMWifiNodeDescriptor&) = default;

  private:
    std::optional<std::string> ssid_;
    std::optional<std::string> bssid_;
};
