#include "ZRMPlatform/Linux/ZRMLinuxWallTime.h"

namespace {

constexpr double kLatestSeconds = 9e9;

std::chrono::nanoseconds nanoseconds(double seconds) {
    if (!(seconds > 0)) {
        return std::chrono::nanoseconds(0);
    }
    const std::chrono::duration<double> bounded(seconds < kLatestSeconds ? seconds
                                                                         : kLatestSeconds);
    return std::chrono::duration_cast<std::chrono::nanoseconds>(bounded);
}

}  // namespace

ZRMLinuxTimePoint zrm_timePoint(ZRMDate date) {
    return ZRMLinuxTimePoint(nanoseconds(date.secondsSince1970));
}

ZRMLinuxTimePoint zrm_timePointAfter(double seconds) {
    const auto now = std::chrono::system_clock::now();
    const auto latest = zrm_timePoint({kLatestSeconds});
    const auto delay = nanoseconds(seconds);
    return latest - now < delay ? latest : now + delay;
}
