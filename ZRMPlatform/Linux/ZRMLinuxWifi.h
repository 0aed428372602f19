// The wireless network the machine is attached to.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include "ZRMPlatform/Linux/ZRMLinuxInterfaces.h"
#include "ZRMPlatform/Ports/ZRMNetworkInterfaces.h"

// The network of one interface in a message of the kernel's list of those it hears: the one the
// interface is attached to; absent when the message is of another. A network's name is any 32
// bytes: those that are not UTF-8 are repaired, so that two such networks may come out the same;
// one that is empty or all zeros is hidden and absent.
[[nodiscard]] std::optional<ZRMWifiNetwork> zrm_attachedNetwork(
    std::span<const std::uint8_t> attributes);

// Asks the kernel for the list it keeps; does not make the interface listen.
[[nodiscard]] std::optional<ZRMWifiNetwork> zrm_networkOfInterface(std::uint32_t index);

// That of the first wireless interface that is attached to one.
class ZRMLinuxWifi : public ZRMWifi {
  public:
    using NetworkOfInterface = std::function<std::optional<ZRMWifiNetwork>(std::uint32_t index)>;

    explicit ZRMLinuxWifi(ZRMLinuxInterfaces interfaces,
                          NetworkOfInterface networkOfInterface = &zrm_networkOfInterface);

    [[nodiscard]] std::optional<ZRMWifiNetwork> currentNetwork() const override;

  private:
    ZRMLinuxInterfaces interfaces_;
    NetworkOfInterface networkOfInterface_;
};
