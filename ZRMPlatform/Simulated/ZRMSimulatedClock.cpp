#include "ZRMPlatform/Simulated/ZRMSimulatedClock.h"

#include <utility>

ZRMSimulatedClock::ZRMSimulatedClock(std::shared_ptr<ZRMSimulatedTime> time)
    : time_(std::move(time)) {}

ZRMDate ZRMSimulatedClock::now() const {
    return time_->now();
}

std::optional<ZRMBootTime> ZRMSimulatedClock::bootTime() const {
    if (!bootTimeKnown_) {
        return std::nullopt;
    }
    constexpr std::int64_t kSecond = 1'000'000;
    const std::int64_t boot = time_->wallMicroseconds() - time_->uptimeMicroseconds();
    const std::int64_t fraction = ((boot % kSecond) + kSecond) % kSecond;
    return ZRMBootTime{(boot - fraction) / kSecond, static_cast<std::int32_t>(fraction)};
}

double ZRMSimulatedClock::uptimeSeconds() const {
    return time_->uptimeSeconds();
}
