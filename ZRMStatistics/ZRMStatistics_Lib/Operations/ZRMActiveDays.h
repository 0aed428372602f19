// On how many days a record's upload was attempted.
#pragma once

#include <cstdint>

// An attempt counts a new day when it comes more than this after the last counted one.
inline constexpr double kZRMActiveDaySeconds = 86400.0;

struct ZRMActiveDays {
    std::int16_t days = 1;
    double lastCountedTimestamp = 0;  // seconds since 1970

    friend bool operator==(const ZRMActiveDays&, const ZRMActiveDays&) = default;
};

// The count after an attempt at `now` (seconds since 1970). Stays at the largest count there is.
[[nodiscard]] ZRMActiveDays zrm_activeDaysAfterAttempt(ZRMActiveDays before, double now);
