#include "ZRMPlatform/Simulated/ZRMSimulatedLocation.h"

#include <algorithm>
#include <utility>

void ZRMSimulatedLocation::setStatus(int status) {
    if (std::exchange(status_, status) != status) {
        tellAll(false, [status](auto& delegate) { delegate.authorizationChanged(status); });
    }
}

void ZRMSimulatedLocation::deliver(std::vector<ZRMLocation> locations) {
    tellAll(true, [locations = std::move(locations)](auto& delegate) {
        delegate.locationsUpdated(locations);
    });
}

void ZRMSimulatedLocation::fail(const ZRMError& error) {
    tellAll(true, [error](auto& delegate) { delegate.locationFailed(error); });
}

std::size_t ZRMSimulatedLocation::updatingManagers() const {
    return static_cast<std::size_t>(std::ranges::count_if(managers_, [](const auto& each) {
        const auto manager = each.lock();
        return manager && manager->isUpdating();
    }));
}

void ZRMSimulatedLocation::enlist(const std::shared_ptr<ZRMSimulatedLocationManager>& manager) {
    std::erase_if(managers_, [](const auto& each) { return each.expired(); });
    managers_.push_back(manager);
    ++managersMade_;
}

void ZRMSimulatedLocation::tellAll(
    bool updatingOnly, const std::function<void(ZRMLocationManagerDelegate&)>& message) {
    for (const auto& each : managers_) {
        if (const auto manager = each.lock()) {
            manager->tell(updatingOnly, message);
        }
    }
}

ZRMSimulatedLocationManager::ZRMSimulatedLocationManager(
    std::shared_ptr<ZRMSimulatedLocation> location, std::shared_ptr<ZRMSimulatedProcess> process,
    std::shared_ptr<ZRMQueue> mainQueue, double desiredAccuracy)
    : location_(std::move(location)),
      process_(std::move(process)),
      mainQueue_(std::move(mainQueue)),
      desiredAccuracy_(desiredAccuracy) {}

void ZRMSimulatedLocationManager::tell(bool updatingOnly,
                                       std::function<void(ZRMLocationManagerDelegate&)> message) {
    if ((updatingOnly && !isUpdating_) || !process_->isAlive()) {
        return;
    }
    mainQueue_->post([weak = weak_from_this(), updatingOnly, message = std::move(message)] {
        const auto manager = weak.lock();
        if (!manager || (updatingOnly && !manager->isUpdating_)) {
            return;
        }
        if (const auto delegate = manager->delegate_.lock()) {
            message(*delegate);
        }
    });
}

ZRMSimulatedLocationServices::ZRMSimulatedLocationServices(
    std::shared_ptr<ZRMSimulatedLocation> location, std::shared_ptr<ZRMSimulatedProcess> process,
    std::shared_ptr<ZRMQueue> mainQueue)
    : location_(std::move(location)),
      process_(std::move(process)),
      mainQueue_(std::move(mainQueue)) {}

bool ZRMSimulatedLocationServices::locationServicesEnabled() const {
    return location_->areServicesEnabled();
}

std::shared_ptr<ZRMLocationManager> ZRMSimulatedLocationServices::makeLocationManager(
    double desiredAccuracy) {
    auto manager = std::make_shared<ZRMSimulatedLocationManager>(location_, process_, mainQueue_,
                                                                 desiredAccuracy);
    location_->enlist(manager);
    return manager;
}
