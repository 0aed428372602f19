#include "ZRMPlatform/HostFed/ZRMHostFedLocation.h"

namespace {

void tell(ZRMLocationManagerDelegate& delegate, const ZRMHostLocation::Update& update) {
    if (const auto* error = std::get_if<ZRMError>(&update)) {
        delegate.locationFailed(*error);
    } else {
        delegate.locationsUpdated(std::get<std::vector<ZRMLocation>>(update));
    }
}

}  // namespace

ZRMHostFedLocationManager::ZRMHostFedLocationManager(std::shared_ptr<ZRMHostSignals> signals,
                                                     std::shared_ptr<ZRMQueue> mainQueue,
                                                     double desiredAccuracy)
    : signals_(std::move(signals)),
      mainQueue_(std::move(mainQueue)),
      desiredAccuracy_(desiredAccuracy) {}

void ZRMHostFedLocationManager::setDelegate(std::weak_ptr<ZRMLocationManagerDelegate> delegate) {
    *delegate_ = std::move(delegate);
    if (statuses_) {
        return;
    }
    statuses_ = signals_->location.observeStatus(mainQueue_, [slot = delegate_](const int& status) {
        if (const auto current = slot->lock()) {
            current->authorizationChanged(status);
        }
    });
}

void ZRMHostFedLocationManager::startUpdatingLocation() {
    if (updates_) {
        return;
    }
    updates_ = signals_->location.observeUpdates(
        mainQueue_, [slot = delegate_](const ZRMHostLocation::Update& update) {
            if (const auto current = slot->lock()) {
                tell(*current, update);
            }
        });
}
