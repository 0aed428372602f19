// The biometric state as the device's authentication service tells it.
#pragma once

#include <memory>
#include <utility>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMTouchIdSensing.h"
#include "ZRMPlatform/Ports/ZRMLocalAuthentication.h"

class ZRMTouchIdSensor final : public ZRMTouchIdSensing {
  public:
    explicit ZRMTouchIdSensor(std::shared_ptr<const ZRMLocalAuthentication> localAuthentication)
        : localAuthentication_(std::move(localAuthentication)) {}

    [[nodiscard]] ZRMTouchIdInfo currentTouchIdInfo() override {
        return ZRMTouchIdInfo::currentTouchIdInfo(*localAuthentication_);
    }

  private:
    std::shared_ptr<const ZRMLocalAuthentication> localAuthentication_;
};
