// The displays of the device.
#pragma once

#include <vector>

#include "ZRMPlatform/Ports/Values/ZRMScreen.h"

// May be used from any thread.
class ZRMScreens {
  public:
    virtual ~ZRMScreens() = default;
    // The main one first; empty on a device without a display.
    [[nodiscard]] virtual std::vector<ZRMScreen> screens() const = 0;
};
