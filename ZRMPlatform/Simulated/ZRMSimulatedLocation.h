// Where a simulated device is, and whether it may be asked.
#pragma once

#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <utility>
#include <vector>

#include "ZRMPlatform/Ports/ZRMLocationServices.h"
#include "ZRMPlatform/Ports/ZRMQueue.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedProcess.h"

class ZRMSimulatedLocationManager;

// Kept over restarts of the process. One thread. What it tells, it tells on the main queue.
class ZRMSimulatedLocation {
  public:
    // Not determined at first.
    [[nodiscard]] int status() const { return status_; }
    void setStatus(int status);
    // On at first.
    [[nodiscard]] bool areServicesEnabled() const { return servicesEnabled_; }
    void setServicesEnabled(bool enabled) { servicesEnabled_ = enabled; }

    // For the managers that are updating now.
    void deliver(std::vector<ZRMLocation> locations);
    void fail(const ZRMError& error);

    [[nodiscard]] std::size_t updatingManagers() const;
    [[nodiscard]] std::size_t managersMade() const { return managersMade_; }
    void enlist(const std::shared_ptr<ZRMSimulatedLocationManager>& manager);

  private:
    void tellAll(bool updatingOnly,
                 const std::function<void(ZRMLocationManagerDelegate&)>& message);

    int status_ = ZRMLocationAuthorizationNotDetermined;
    bool servicesEnabled_ = true;
    std::size_t managersMade_ = 0;
    std::list<std::weak_ptr<ZRMSimulatedLocationManager>> managers_;
};

class ZRMSimulatedLocationManager final
    : public ZRMLocationManager,
      public std::enable_shared_from_this<ZRMSimulatedLocationManager> {
  public:
    ZRMSimulatedLocationManager(std::shared_ptr<ZRMSimulatedLocation> location,
                                std::shared_ptr<ZRMSimulatedProcess> process,
                                std::shared_ptr<ZRMQueue> mainQueue, double desiredAccuracy);

    void setDelegate(std::weak_ptr<ZRMLocationManagerDelegate> delegate) override {
        delegate_ = std::move(delegate);
    }
    [[nodiscard]] int authorizationStatus() const override { return location_->status(); }
    [[nodiscard]] double desiredAccuracy() const override { return desiredAccuracy_; }
    void startUpdatingLocation() override { isUpdating_ = true; }
    void stopUpdatingLocation() override { isUpdating_ = false; }

    [[nodiscard]] bool isUpdating() const { return isUpdating_; }
    // Posts the message for the delegate; dropped when updates have ended by then, if they matter.
    void tell(bool updatingOnly, std::function<void(ZRMLocationManagerDelegate&)> message);

  private:
    std::shared_ptr<ZRMSimulatedLocation> location_;
    std::shared_ptr<ZRMSimulatedProcess> process_;
    std::shared_ptr<ZRMQueue> mainQueue_;
    double desiredAccuracy_;
    std::weak_ptr<ZRMLocationManagerDelegate> delegate_;
    bool isUpdating_ = false;
};

class ZRMSimulatedLocationServices final : public ZRMLocationServices {
  public:
    ZRMSimulatedLocationServices(std::shared_ptr<ZRMSimulatedLocation> location,
                                 std::shared_ptr<ZRMSimulatedProcess> process,
                                 std::shared_ptr<ZRMQueue> mainQueue);
    [[nodiscard]] bool locationServicesEnabled() const override;
    [[nodiscard]] std::shared_ptr<ZRMLocationManager> makeLocationManager(
        double desiredAccuracy) override;

  private:
    std::shared_ptr<ZRMSimulatedLocation> location_;
    std::shared_ptr<ZRMSimulatedProcess> process_;
    std::shared_ptr<ZRMQueue> mainQueue_;
};

class ZRMSimulatedLocationAuthorization final : public ZRMLocationAuthorization {
  public:
    explicit ZRMSimulatedLocationAuthorization(std::shared_ptr<ZRMSimulatedLocation> location)
        : location_(std::move(location)) {}
    [[nodiscard]] int status() const override { return location_->status(); }
    void setStatus(int status) { location_->setStatus(status); }

  private:
    std::shared_ptr<ZRMSimulatedLocation> location_;
};
