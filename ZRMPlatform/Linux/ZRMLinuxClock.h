// The kernel's clocks.
#pragma once

#include "ZRMPlatform/Ports/ZRMClock.h"

// Boot time is the wall clock less the time since boot, to the microsecond, so it moves when the
// wall clock is set.
class ZRMLinuxClock : public ZRMClock {
  public:
    [[nodiscard]] ZRMDate now() const override;
    [[nodiscard]] std::optional<ZRMBootTime> bootTime() const override;
    [[nodiscard]] double uptimeSeconds() const override;
};
