#include "ZRMPlatform/HostFed/ZRMHostLocation.h"

#include <utility>

int ZRMHostLocation::status() const {
    const ZRMLockGuard lock(mutex_);
    return status_;
}

void ZRMHostLocation::setStatus(int status) {
    ZRMHostObservers<int>::Delivery delivery;
    {
        const ZRMLockGuard lock(mutex_);
        if (std::exchange(status_, status) != status) {
            statuses_.put(status, delivery);
        }
    }
    delivery.post();
}

bool ZRMHostLocation::areServicesEnabled() const {
    const ZRMLockGuard lock(mutex_);
    return servicesEnabled_;
}

void ZRMHostLocation::setServicesEnabled(bool enabled) {
    const ZRMLockGuard lock(mutex_);
    servicesEnabled_ = enabled;
}

void ZRMHostLocation::deliver(std::vector<ZRMLocation> locations) {
    tell(std::move(locations));
}

void ZRMHostLocation::fail(ZRMError error) {
    tell(std::move(error));
}

bool ZRMHostLocation::isWanted() const {
    const ZRMLockGuard lock(mutex_);
    return !updates_.isEmpty();
}

std::shared_ptr<ZRMSubscription> ZRMHostLocation::observeUpdates(
    std::shared_ptr<ZRMQueue> queue, std::function<void(const Update&)> callback) {
    const ZRMLockGuard lock(mutex_);
    return updates_.add(std::move(queue), std::move(callback));
}

std::shared_ptr<ZRMSubscription> ZRMHostLocation::observeStatus(
    std::shared_ptr<ZRMQueue> queue, std::function<void(const int&)> callback) {
    const ZRMLockGuard lock(mutex_);
    return statuses_.add(std::move(queue), std::move(callback));
}

void ZRMHostLocation::tell(const Update& update) {
    ZRMHostObservers<Update>::Delivery delivery;
    {
        const ZRMLockGuard lock(mutex_);
        updates_.put(update, delivery);
    }
    delivery.post();
}
