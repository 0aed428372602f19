// Notifications, from what the host tells.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "ZRMPlatform/HostFed/ZRMHostSignals.h"
#include "ZRMPlatform/Ports/ZRMApplicationNotifications.h"

class ZRMHostFedNotifications final : public ZRMApplicationNotifications {
  public:
    ZRMHostFedNotifications(std::shared_ptr<ZRMHostSignals> signals,
                            std::shared_ptr<ZRMQueue> mainQueue)
        : signals_(std::move(signals)), mainQueue_(std::move(mainQueue)) {}

    [[nodiscard]] std::shared_ptr<ZRMSubscription> observe(
        ZRMApplicationNotification notification, std::function<void()> callback) override {
        return signals_->notifications.observe(notification, mainQueue_, std::move(callback));
    }

  private:
    const std::shared_ptr<ZRMHostSignals> signals_;
    const std::shared_ptr<ZRMQueue> mainQueue_;
};
