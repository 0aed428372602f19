// The network interfaces of the device and their addresses.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/Values/ZRMWifiNetwork.h"

struct ZRMInterfaceAddress {
    // The library's name: "en0" for the first fixed or wireless interface, "pdp_ip0" for the first
    // modem, the system's own name for every other.
    std::string interfaceName;
    ZRMData address;  // in network order: 4 bytes of IPv4 or 16 bytes of IPv6

    friend bool operator==(const ZRMInterfaceAddress&, const ZRMInterfaceAddress&) = default;
};

// May be used from any thread; never waits for the network.
class ZRMNetworkInterfaces {
  public:
    virtual ~ZRMNetworkInterfaces() = default;
    // In the system's order; absent when they cannot be listed.
    [[nodiscard]] virtual std::optional<std::vector<ZRMInterfaceAddress>> addresses() const = 0;
    // The system's names of the interfaces that traffic may leave by, tunnels among them; absent
    // when they cannot be listed.
    [[nodiscard]] virtual std::optional<std::vector<std::string>> scopedInterfaceNames() const = 0;
};

class ZRMWifi {
  public:
    virtual ~ZRMWifi() = default;
    // What is known at once; absent without a network, or where the system does not say.
    [[nodiscard]] virtual std::optional<ZRMWifiNetwork> currentNetwork() const = 0;
};
