// The wireless network that the device is attached to.
#pragma once

#include <optional>
#include <string>

struct ZRMWifiNetwork {
    std::optional<std::string> ssid;   // UTF-8
    std::optional<std::string> bssid;  // "a4:5e:60:01:02:03"

    friend bool operator==(const ZRMWifiNetwork&, const ZRMWifiNetwork&) = default;
};
