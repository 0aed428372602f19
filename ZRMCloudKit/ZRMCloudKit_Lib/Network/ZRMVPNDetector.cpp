#include "ZRMCloudKit/ZRMCloudKit_Lib/Network/ZRMVPNDetector.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace {

// As they stand in the names of tunnel interfaces; case counts.
constexpr std::array kMarkers{"tap", "tun", "ppp", "ipsec"};

bool isTunnel(const std::string& interfaceName) {
    return std::ranges::any_of(kMarkers, [&interfaceName](const char* marker) {
        return interfaceName.find(marker) != std::string::npos;
    });
}

}  // namespace

ZRMVPNDetector::ZRMVPNDetector(std::shared_ptr<const ZRMNetworkInterfaces> interfaces,
                               std::shared_ptr<ZRMApplicationNotifications> notifications)
    : interfaces_(std::move(interfaces)),
      notifications_(std::move(notifications)),
      isVpnConnected_(checkVpnConnection()) {}

bool ZRMVPNDetector::isVpnConnected() const {
    const ZRMLockGuard lock(mutex_);
    return isVpnConnected_;
}

void ZRMVPNDetector::startDetection(std::function<void(bool connected)> completionHandler) {
    {
        const ZRMLockGuard lock(mutex_);
        completionHandler_ = std::move(completionHandler);
    }
    auto subscription = notifications_->observe(ZRMApplicationNotification::WillEnterForeground,
                                                [weak = weak_from_this()] {
                                                    if (const auto self = weak.lock()) {
                                                        self->performVpnConnectionCheck();
                                                    }
                                                });
    const ZRMLockGuard lock(mutex_);
    subscription_.swap(subscription);
}

void ZRMVPNDetector::performVpnConnectionCheck() {
    const bool connected = checkVpnConnection();
    std::function<void(bool)> handler;
    {
        const ZRMLockGuard lock(mutex_);
        if (connected == isVpnConnected_) {
            return;
        }
        isVpnConnected_ = connected;
        handler = completionHandler_;
    }
    if (handler) {
        handler(connected);
    }
}

bool ZRMVPNDetector::checkVpnConnection() const {
    const auto names = interfaces_->scopedInterfaceNames();
    return names && std::ranges::any_of(*names, &isTunnel);
}
