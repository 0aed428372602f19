// What the host tells of itself and its screens.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <utility>

#include "ZRMPlatform/HostFed/ZRMHostObservers.h"
#include "ZRMPlatform/Ports/ZRMApplicationNotifications.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

// May be used from any thread. A notification that nobody observes is not kept.
class ZRMHostNotifications {
  public:
    void post(ZRMApplicationNotification notification) {
        ZRMHostObservers<Nothing>::Delivery delivery;
        {
            const ZRMLockGuard lock(mutex_);
            observers_[notification].put({}, delivery);
        }
        delivery.post();
    }
    [[nodiscard]] std::shared_ptr<ZRMSubscription> observe(ZRMApplicationNotification notification,
                                                           std::shared_ptr<ZRMQueue> queue,
                                                           std::function<void()> callback) {
        const ZRMLockGuard lock(mutex_);
        return observers_[notification].add(
            std::move(queue), [callback = std::move(callback)](const Nothing&) { callback(); });
    }

  private:
    struct Nothing {};

    ZRMMutex mutex_;
    std::map<ZRMApplicationNotification, ZRMHostObservers<Nothing>> observers_
        ZRM_GUARDED_BY(mutex_);
};
