// Reachability by what the kernel's routing tables say.
#pragma once

#include <memory>
#include <vector>

#include "ZRMPlatform/Linux/ZRMLinuxInterfaces.h"
#include "ZRMPlatform/Linux/ZRMLinuxResolveOverrides.h"
#include "ZRMPlatform/Linux/ZRMLinuxRouteChanges.h"
#include "ZRMPlatform/Linux/ZRMLinuxRoutes.h"
#include "ZRMPlatform/Ports/ZRMReachabilityTarget.h"

// Nothing is ever sent and no name resolved. A numeric address, "localhost" and a name with an
// override are reachable when there is a route to the address; any other name, 0.0.0.0 and :: when
// there is a default route. Leaving by a modem's interface means cellular.
class ZRMLinuxReachabilityTargets : public ZRMReachabilityTargets {
  public:
    ZRMLinuxReachabilityTargets(std::shared_ptr<const ZRMLinuxRoutes> routes,
                                std::shared_ptr<ZRMLinuxRouteChanges> changes,
                                ZRMLinuxInterfaces interfaces,
                                std::vector<ZRMLinuxResolveOverride> overrides);

    // Absent for an empty name and one with a NUL.
    std::shared_ptr<ZRMReachabilityTarget> targetForHost(const std::string& hostName) override;
    // [length, family, port (2 bytes), address …] with family 2 for IPv4, which takes 16 bytes, or
    // 30 for IPv6, which takes 28 with 4 bytes of flow before the address; absent for another form.
    std::shared_ptr<ZRMReachabilityTarget> targetForAddress(
        const ZRMSocketAddress& address) override;

  private:
    // No address means the default route.
    std::shared_ptr<ZRMReachabilityTarget> targetFor(std::optional<ZRMLinuxIpAddress> address);

    std::shared_ptr<const ZRMLinuxRoutes> routes_;
    std::shared_ptr<ZRMLinuxRouteChanges> changes_;
    ZRMLinuxInterfaces interfaces_;
    std::vector<ZRMLinuxResolveOverride> overrides_;
};
