// Wall time, boot time and time since boot.
#pragma once

#include <cstdint>
#include <optional>

#include "ZRMPlatform/Ports/Values/ZRMDate.h"

// The kernel's boot time, the pair that "kern.boottime" holds.
struct ZRMBootTime {
    std::int64_t seconds = 0;       // since 1970
    std::int32_t microseconds = 0;  // 0 to 999999
};

// Never blocks; may be called from any thread.
class ZRMClock {
  public:
    virtual ~ZRMClock() = default;
    // Wall time; may jump either way.
    [[nodiscard]] virtual ZRMDate now() const = 0;
    // Absent when the kernel does not tell.
    [[nodiscard]] virtual std::optional<ZRMBootTime> bootTime() const = 0;
    // Seconds since boot, sleep included; never goes back.
    [[nodiscard]] virtual double uptimeSeconds() const = 0;
};
