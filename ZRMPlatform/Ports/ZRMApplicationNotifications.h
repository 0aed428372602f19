// What the system tells an application about itself and its screens.
#pragma once

#include <functional>
#include <memory>

#include "ZRMPlatform/Ports/ZRMSubscription.h"

enum class ZRMApplicationNotification {
    WillEnterForeground,
    ScreenDidConnect,
    ScreenCapturedDidChange,
    UserDidTakeScreenshot,
};

// May be used from any thread.
class ZRMApplicationNotifications {
  public:
    virtual ~ZRMApplicationNotifications() = default;
    // The callback runs on the main queue, once for each later notification.
    [[nodiscard]] virtual std::shared_ptr<ZRMSubscription> observe(
        ZRMApplicationNotification notification, std::function<void()> callback) = 0;
};
