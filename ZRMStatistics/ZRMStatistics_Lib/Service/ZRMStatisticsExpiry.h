// When a queued event is too old to be worth sending.
#pragma once

#include <cstdint>

inline constexpr double kZRMStatisticsLifetimeSeconds = 2592000.0;  // 30 days
inline constexpr std::int16_t kZRMStatisticsMaxActiveDays = 4;

// Stored more than the lifetime before `now`, or tried on that many days. Times are in seconds
// since 1970.
[[nodiscard]] bool zrm_isStatisticExpired(double storeTimestamp, std::int16_t activeDays,
                                          double now);
