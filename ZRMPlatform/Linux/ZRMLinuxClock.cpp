#include "ZRMPlatform/Linux/ZRMLinuxClock.h"

#include <time.h>

namespace {

constexpr std::int64_t kNanosecondsInSecond = 1'000'000'000;

std::int64_t nanosecondsOf(clockid_t clock) {
    timespec time{};
    if (clock_gettime(clock, &time) != 0) {
        return 0;
    }
    return time.tv_sec * kNanosecondsInSecond + time.tv_nsec;
}

double secondsOf(clockid_t clock) {
    timespec time{};
    if (clock_gettime(clock, &time) != 0) {
        return 0;
    }
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

}  // namespace

ZRMDate ZRMLinuxClock::now() const {
    return {secondsOf(CLOCK_REALTIME)};
}

std::optional<ZRMBootTime> ZRMLinuxClock::bootTime() const {
    const auto sinceBoot = nanosecondsOf(CLOCK_BOOTTIME);
    if (sinceBoot == 0) {
        return std::nullopt;
    }
    const auto boot = nanosecondsOf(CLOCK_REALTIME) - sinceBoot;
    auto seconds = boot / kNanosecondsInSecond;
    auto rest = boot % kNanosecondsInSecond;
    if (rest < 0) {  // a wall clock that was never set lies before the boot
        --seconds;
        rest += kNanosecondsInSecond;
    }
    return ZRMBootTime{seconds, static_cast<std::int32_t>(rest / 1000)};
}

double ZRMLinuxClock::uptimeSeconds() const {
    return secondsOf(CLOCK_BOOTTIME);
}
