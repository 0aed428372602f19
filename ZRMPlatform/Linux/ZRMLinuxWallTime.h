// Between dates and the system clock's own time points.
#pragma once

#include <chrono>

#include "ZRMPlatform/Ports/Values/ZRMDate.h"

using ZRMLinuxTimePoint =
    std::chrono::time_point<std::chrono::system_clock, std::chrono::nanoseconds>;

// What the clock cannot hold becomes its nearest moment between 1970 and 2255.
ZRMLinuxTimePoint zrm_timePoint(ZRMDate date);

// Now, later by that many seconds; not later at all when they are 0, negative or not a number.
ZRMLinuxTimePoint zrm_timePointAfter(double seconds);
