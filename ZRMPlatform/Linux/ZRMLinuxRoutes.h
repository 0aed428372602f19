// What the kernel's routing tables say.
#pragma once

#include <cstdint>
#include <optional>

#include "ZRMPlatform/Linux/ZRMLinuxIpAddress.h"

// May be called from any thread; never waits for the network. An answer is the index of the
// interface that a packet would leave by, 0 when there is no route, absent when the kernel does
// not answer.
class ZRMLinuxRoutes {
  public:
    virtual ~ZRMLinuxRoutes() = default;
    [[nodiscard]] virtual std::optional<std::uint32_t> interfaceToward(
        const ZRMLinuxIpAddress& address) const = 0;
    // Of the best IPv4 default route, or of the best IPv6 one where there is none for IPv4. A route
    // whose link is down does not count.
    [[nodiscard]] virtual std::optional<std::uint32_t> interfaceOfDefaultRoute() const = 0;
};

// Asks over rtnetlink, anew each time.
class ZRMLinuxKernelRoutes : public ZRMLinuxRoutes {
  public:
    [[nodiscard]] std::optional<std::uint32_t> interfaceToward(
        const ZRMLinuxIpAddress& address) const override;
    [[nodiscard]] std::optional<std::uint32_t> interfaceOfDefaultRoute() const override;
};
