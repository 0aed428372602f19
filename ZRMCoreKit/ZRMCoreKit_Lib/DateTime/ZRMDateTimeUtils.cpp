#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMDateTimeUtils.h"

#include <limits>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Numbers/ZRMNumbers.h"

std::optional<std::int64_t> ZRMDateTimeUtils::getStartDateTime(const ZRMClock& clock) {
    constexpr std::int64_t kMostSeconds = std::numeric_limits<std::int64_t>::max() / 1000000 - 1;
    const auto boot = clock.bootTime();
    if (!boot || boot->seconds > kMostSeconds || boot->seconds < -kMostSeconds) {
        return std::nullopt;
    }
    return (boot->seconds * 1000000 + boot->microseconds) / 1000;
}

std::int64_t ZRMDateTimeUtils::getUptime(const ZRMClock& clock) {
    const auto boot = static_cast<double>(getStartDateTime(clock).value_or(0));
    const auto now = static_cast<double>(zrm_int64FromDouble(clock.now().secondsSince1970 * 1000));
    return zrm_int64FromDouble(now - boot);
}
