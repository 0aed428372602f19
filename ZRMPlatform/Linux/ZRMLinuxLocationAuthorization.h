// Whether the application may ask where the device is.
#pragma once

#include "ZRMPlatform/Ports/ZRMLocationServices.h"

// There is no location source on Linux yet, so that nobody was ever asked: "not determined".
class ZRMLinuxLocationAuthorization : public ZRMLocationAuthorization {
  public:
    [[nodiscard]] int status() const override { return 0; }
};
