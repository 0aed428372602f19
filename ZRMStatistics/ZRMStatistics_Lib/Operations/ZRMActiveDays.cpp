#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMActiveDays.h"

#include <limits>

ZRMActiveDays zrm_activeDaysAfterAttempt(ZRMActiveDays before, double now) {
    if (!(now - before.lastCountedTimestamp > kZRMActiveDaySeconds)) {
        return before;
    }
    const bool isFull = before.days == std::numeric_limits<std::int16_t>::max();
    return {isFull ? before.days : static_cast<std::int16_t>(before.days + 1), now};
}
