// Location services, from what the host tells.
#pragma once

#include <memory>
#include <utility>

#include "ZRMPlatform/HostFed/ZRMHostSignals.h"
#include "ZRMPlatform/Ports/ZRMLocationServices.h"

class ZRMHostFedLocationAuthorization final : public ZRMLocationAuthorization {
  public:
    explicit ZRMHostFedLocationAuthorization(std::shared_ptr<ZRMHostSignals> signals)
        : signals_(std::move(signals)) {}
    [[nodiscard]] int status() const override { return signals_->location.status(); }

  private:
    const std::shared_ptr<ZRMHostSignals> signals_;
};

class ZRMHostFedLocationManager final : public ZRMLocationManager {
  public:
    ZRMHostFedLocationManager(std::shared_ptr<ZRMHostSignals> signals,
                              std::shared_ptr<ZRMQueue> mainQueue, double desiredAccuracy);

    void setDelegate(std::weak_ptr<ZRMLocationManagerDelegate> delegate) override;
    [[nodiscard]] int authorizationStatus() const override { return signals_->location.status(); }
    [[nodiscard]] double desiredAccuracy() const override { return desiredAccuracy_; }
    void startUpdatingLocation() override;
    void stopUpdatingLocation() override { updates_.reset(); }

  private:
    const std::shared_ptr<ZRMHostSignals> signals_;
    const std::shared_ptr<ZRMQueue> mainQueue_;
    const double desiredAccuracy_;
    // Shared with deliveries under way, during which the manager may go.
    const std::shared_ptr<std::weak_ptr<ZRMLocationManagerDelegate>> delegate_ =
        std::make_shared<std::weak_ptr<ZRMLocationManagerDelegate>>();
    std::shared_ptr<ZRMSubscription> statuses_;  // from the first delegate on
    std::shared_ptr<ZRMSubscription> updates_;   // while updating
};

class ZRMHostFedLocationServices final : public ZRMLocationServices {
  public:
    ZRMHostFedLocationServices(std::shared_ptr<ZRMHostSignals> signals,
                               std::shared_ptr<ZRMQueue> mainQueue)
        : signals_(std::move(signals)), mainQueue_(std::move(mainQueue)) {}

    [[nodiscard]] bool locationServicesEnabled() const override {
        return signals_->location.areServicesEnabled();
    }
    [[nodiscard]] std::shared_ptr<ZRMLocationManager> makeLocationManager(
        double desiredAccuracy) override {
        return std::make_shared<ZRMHostFedLocationManager>(signals_, mainQueue_, desiredAccuracy);
    }

  private:
    const std::shared_ptr<ZRMHostSignals> signals_;
    const std::shared_ptr<ZRMQueue> mainQueue_;
};
