// The addresses that the device has in the networks it is connected to.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Network/ZRMIpAddress.h"
#include "ZRMPlatform/Ports/ZRMNetworkInterfaces.h"

// Keeps nothing; asks the port each time. May be used from any thread.
class ZRMIpAddressProvider {
  public:
    explicit ZRMIpAddressProvider(std::shared_ptr<const ZRMNetworkInterfaces> interfaces);

    // The first address on "en0", otherwise the last one on "pdp_ip0"; absent without either and
    // when the interfaces cannot be listed. Empty addresses do not count.
    [[nodiscard]] std::optional<ZRMIpAddress> currentIpAddressV4() const;
    [[nodiscard]] std::optional<ZRMIpAddress> currentIpAddressV6() const;

    // No text, "0.0.0.0" and "::".
    static bool isEmptyIpAddress(const std::optional<std::string>& text);
    // Absent when the address has neither 4 bytes nor 16.
    static std::optional<std::string> ipAddressStringFromInterface(
        const ZRMInterfaceAddress& interface);

  private:
    [[nodiscard]] std::optional<ZRMIpAddress> currentIpAddress(ZRMIpAddressType type) const;

    std::shared_ptr<const ZRMNetworkInterfaces> interfaces_;
};
