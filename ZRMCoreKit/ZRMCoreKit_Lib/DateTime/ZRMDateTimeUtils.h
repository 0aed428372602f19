// Boot time and uptime in milliseconds.
#pragma once

#include <cstdint>
#include <optional>

#include "ZRMPlatform/Ports/ZRMClock.h"

class ZRMDateTimeUtils {
  public:
    // Milliseconds from 1970 to the boot; absent when the kernel does not tell.
    [[nodiscard]] static std::optional<std::int64_t> getStartDateTime(const ZRMClock& clock);
    // Milliseconds of wall time since the boot. Without a boot time it is the wall time since 1970.
    [[nodiscard]] static std::int64_t getUptime(const ZRMClock& clock);
};
