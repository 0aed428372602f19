#include "ZRMPlatform/Simulated/ZRMSimulatedTime.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kMicrosecondsASecond = 1e6;
constexpr double kThousandYearsSeconds = 1000.0 * 366 * 86400;

}  // namespace

std::int64_t ZRMSimulatedTime::microseconds(double seconds) {
    if (std::isnan(seconds)) {
        seconds = kThousandYearsSeconds;
    }
    const double bounded = std::clamp(seconds, -kThousandYearsSeconds, kThousandYearsSeconds);
    return std::llround(bounded * kMicrosecondsASecond);
}

ZRMSimulatedMoment ZRMSimulatedTime::wallMoment(ZRMDate date) {
    return {ZRMSimulatedMoment::Clock::Wall, microseconds(date.secondsSince1970)};
}

ZRMDate ZRMSimulatedTime::now() const {
    return {static_cast<double>(wallMicroseconds()) / kMicrosecondsASecond};
}

double ZRMSimulatedTime::uptimeSeconds() const {
    return static_cast<double>(uptime_) / kMicrosecondsASecond;
}

std::int64_t ZRMSimulatedTime::uptimeOf(ZRMSimulatedMoment moment) const {
    return moment.clock == ZRMSimulatedMoment::Clock::Wall ? moment.microseconds - wallOffset_
                                                           : moment.microseconds;
}

ZRMSimulatedMoment ZRMSimulatedTime::momentAfter(ZRMSimulatedMoment::Clock clock,
                                                 double delaySeconds) const {
    const std::int64_t base =
        clock == ZRMSimulatedMoment::Clock::Wall ? wallMicroseconds() : uptime_;
    std::int64_t delay = 0;
    if (!(delaySeconds <= 0)) {
        delay = std::max<std::int64_t>(1, microseconds(delaySeconds));
    }
    return {clock, base + delay};
}

void ZRMSimulatedTime::advanceTo(std::int64_t uptimeMicroseconds) {
    uptime_ = std::max(uptime_, uptimeMicroseconds);
}

void ZRMSimulatedTime::jumpWallClock(double seconds) {
    wallOffset_ += microseconds(seconds);
}

void ZRMSimulatedTime::reboot() {
    wallOffset_ += uptime_;
    uptime_ = 0;
}
