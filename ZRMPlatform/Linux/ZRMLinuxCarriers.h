// The cellular subscriptions of the machine.
#pragma once

#include "ZRMPlatform/Ports/ZRMHardware.h"

// The kernel knows modems and no subscriptions, so there are none without a telephony service.
class ZRMLinuxCarriers : public ZRMCarriers {
  public:
    [[nodiscard]] std::vector<ZRMCarrier> carriers() const override { return {}; }
};
