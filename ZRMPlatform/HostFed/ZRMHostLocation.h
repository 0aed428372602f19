// Where the device is, as the host tells it.
#pragma once

#include <functional>
#include <memory>
#include <variant>
#include <vector>

#include "ZRMPlatform/HostFed/ZRMHostObservers.h"
#include "ZRMPlatform/Ports/ZRMLocationServices.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

// May be used from any thread.
class ZRMHostLocation {
  public:
    using Update = std::variant<std::vector<ZRMLocation>, ZRMError>;

    // A ZRMLocationAuthorizationStatus; not determined until the host says otherwise.
    [[nodiscard]] int status() const;
    void setStatus(int status);
    // Off until the host says otherwise.
    [[nodiscard]] bool areServicesEnabled() const;
    void setServicesEnabled(bool enabled);

    // For those who wait for fixes now; not kept for anybody else.
    void deliver(std::vector<ZRMLocation> locations);
    void fail(ZRMError error);
    // Whether anybody waits.
    [[nodiscard]] bool isWanted() const;

    [[nodiscard]] std::shared_ptr<ZRMSubscription> observeUpdates(
        std::shared_ptr<ZRMQueue> queue, std::function<void(const Update&)> callback);
    // Tells each change of the status.
    [[nodiscard]] std::shared_ptr<ZRMSubscription> observeStatus(
        std::shared_ptr<ZRMQueue> queue, std::function<void(const int&)> callback);

  private:
    void tell(const Update& update);

    mutable ZRMMutex mutex_;
    int status_ ZRM_GUARDED_BY(mutex_) = ZRMLocationAuthorizationNotDetermined;
    bool servicesEnabled_ ZRM_GUARDED_BY(mutex_) = false;
    ZRMHostObservers<Update> updates_ ZRM_GUARDED_BY(mutex_);
    ZRMHostObservers<int> statuses_ ZRM_GUARDED_BY(mutex_);
};
