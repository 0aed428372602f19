// Tells whether a VPN tunnel is active, whenever the application comes to the foreground.
#pragma once

#include <memory>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMVpnDetecting.h"
#include "ZRMPlatform/Ports/ZRMApplicationNotifications.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMNetworkInterfaces.h"

// Owned by a shared pointer. Checks on the main queue, and at construction on the caller's thread.
class ZRMVPNDetector final : public ZRMVpnDetecting,
                             public std::enable_shared_from_this<ZRMVPNDetector> {
  public:
    ZRMVPNDetector(std::shared_ptr<const ZRMNetworkInterfaces> interfaces,
                   std::shared_ptr<ZRMApplicationNotifications> notifications);

    [[nodiscard]] bool isVpnConnected() const override;
    // A change between construction and this call is reported at the next check, not now.
    void startDetection(std::function<void(bool connected)> completionHandler) override;

    // Reports the state when it is another than at the check before.
    void performVpnConnectionCheck();
    // By the names of the interfaces that traffic may leave by; false when they cannot be listed.
    [[nodiscard]] bool checkVpnConnection() const;

  private:
    const std::shared_ptr<const ZRMNetworkInterfaces> interfaces_;
    const std::shared_ptr<ZRMApplicationNotifications> notifications_;

    mutable ZRMMutex mutex_;  // guards what follows; never held while calling out
    bool isVpnConnected_ ZRM_GUARDED_BY(mutex_);
    std::function<void(bool)> completionHandler_ ZRM_GUARDED_BY(mutex_);
    std::shared_ptr<ZRMSubscription> subscription_ ZRM_GUARDED_BY(mutex_);
};
