// The biometric state of the moment.
#pragma once

#include "ZRMCloudKit/ZRMCloudKit_Lib/Biometry/ZRMTouchIdInfo.h"

// May be used from any thread.
class ZRMTouchIdSensing {
  public:
    virtual ~ZRMTouchIdSensing() = default;
    [[nodiscard]] virtual ZRMTouchIdInfo currentTouchIdInfo() = 0;
};
