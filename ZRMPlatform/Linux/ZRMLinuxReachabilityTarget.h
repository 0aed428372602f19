// One peer, or the Internet as such, watched for being reachable.
#pragma once

#include <map>
#include <memory>
#include <vector>

#include "ZRMPlatform/Linux/ZRMLinuxInterfaces.h"
#include "ZRMPlatform/Linux/ZRMLinuxRouteChanges.h"
#include "ZRMPlatform/Linux/ZRMLinuxRoutes.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMReachabilityTarget.h"

class ZRMLinuxReachabilityTarget : public ZRMReachabilityTarget,
                                   public ZRMLinuxRouteListener,
                                   public std::enable_shared_from_this<ZRMLinuxReachabilityTarget> {
  public:
    // No address means the default route.
    ZRMLinuxReachabilityTarget(std::optional<ZRMLinuxIpAddress> address,
                               std::shared_ptr<const ZRMLinuxRoutes> routes,
                               std::shared_ptr<ZRMLinuxRouteChanges> changes,
                               ZRMLinuxInterfaces interfaces);

    [[nodiscard]] std::optional<std::uint32_t> flags() const override;
    bool setCallback(Callback callback) override;
    bool schedule(const std::shared_ptr<ZRMQueue>& queue) override;
    bool unschedule(const std::shared_ptr<ZRMQueue>& queue) override;

    void routesChanged() override;

  private:
    void deliver(const std::shared_ptr<ZRMQueue>& queue, std::uint32_t flags);

    const std::optional<ZRMLinuxIpAddress> address_;
    const std::shared_ptr<const ZRMLinuxRoutes> routes_;
    const std::shared_ptr<ZRMLinuxRouteChanges> changes_;
    const ZRMLinuxInterfaces interfaces_;

    ZRMMutex mutex_;
    std::shared_ptr<const Callback> callback_ ZRM_GUARDED_BY(mutex_);
    std::vector<std::shared_ptr<ZRMQueue>> queues_ ZRM_GUARDED_BY(mutex_);
    bool isListening_ ZRM_GUARDED_BY(mutex_) = false;
    std::optional<std::uint32_t> lastFlags_ ZRM_GUARDED_BY(mutex_);
};
