// The displays of a simulated device, and what the system tells the application.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "ZRMPlatform/Ports/ZRMApplicationNotifications.h"
#include "ZRMPlatform/Ports/ZRMScreens.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedListeners.h"

// Setting the screens tells nobody; notifications are posted on their own.
class ZRMSimulatedScreens final : public ZRMScreens {
  public:
    [[nodiscard]] std::vector<ZRMScreen> screens() const override { return screens_; }
    void setScreens(std::vector<ZRMScreen> screens) { screens_ = std::move(screens); }

  private:
    // One screen of 390 by 844 points that nobody captures.
    std::vector<ZRMScreen> screens_ = {{.isCaptured = false,
                                        .hasMirroredScreen = false,
                                        .width = 390,
                                        .height = 844,
                                        .scale = 3,
                                        .nativeScale = 3}};
};

// Kept over restarts of the process. One thread.
class ZRMSimulatedNotificationCenter {
  public:
    // Every observer hears of it on the main queue.
    void post(ZRMApplicationNotification notification) { listeners_[notification].tell(); }
    [[nodiscard]] ZRMSimulatedListeners<>& listenersOf(ZRMApplicationNotification notification) {
        return listeners_[notification];
    }

  private:
    std::map<ZRMApplicationNotification, ZRMSimulatedListeners<>> listeners_;
};

class ZRMSimulatedNotifications final : public ZRMApplicationNotifications {
  public:
    ZRMSimulatedNotifications(std::shared_ptr<ZRMSimulatedNotificationCenter> center,
                              std::shared_ptr<ZRMSimulatedProcess> process,
                              std::shared_ptr<ZRMQueue> mainQueue)
        : center_(std::move(center)),
          process_(std::move(process)),
          mainQueue_(std::move(mainQueue)) {}

    [[nodiscard]] std::shared_ptr<ZRMSubscription> observe(
        ZRMApplicationNotification notification, std::function<void()> callback) override {
        return center_->listenersOf(notification).add(process_, mainQueue_, std::move(callback));
    }

  private:
    std::shared_ptr<ZRMSimulatedNotificationCenter> center_;
    std::shared_ptr<ZRMSimulatedProcess> process_;
    std::shared_ptr<ZRMQueue> mainQueue_;
};
