// The simulated device's time: it moves only when it is told to.
#pragma once

#include <cstdint>

#include "ZRMPlatform/Ports/Values/ZRMDate.h"

// A moment on one of the two clocks, in microseconds: since 1970 on the wall clock, since boot on
// the other.
struct ZRMSimulatedMoment {
    enum class Clock { Wall, Uptime };
    Clock clock = Clock::Uptime;
    std::int64_t microseconds = 0;
};

// Starts at 2026-01-01 00:00:00 UTC, one hour after the boot. Whole microseconds, so that sums of
// delays stay exact. One thread.
class ZRMSimulatedTime {
  public:
    static constexpr double kStartSecondsSince1970 = 1767225600;
    static constexpr double kStartUptimeSeconds = 3600;

    [[nodiscard]] ZRMDate now() const;
    [[nodiscard]] double uptimeSeconds() const;

    [[nodiscard]] std::int64_t wallMicroseconds() const { return uptime_ + wallOffset_; }
    [[nodiscard]] std::int64_t uptimeMicroseconds() const { return uptime_; }

    // The uptime at which the moment comes, if the wall clock does not jump before it.
    [[nodiscard]] std::int64_t uptimeOf(ZRMSimulatedMoment moment) const;
    // The moment that lies `delaySeconds` from now on that clock; a delay above 0 takes at least
    // one microsecond.
    [[nodiscard]] ZRMSimulatedMoment momentAfter(ZRMSimulatedMoment::Clock clock,
                                                 double delaySeconds) const;

    // Moves both clocks; a moment that is past changes nothing.
    void advanceTo(std::int64_t uptimeMicroseconds);
    // Moves the wall clock alone, either way.
    void jumpWallClock(double seconds);
    // Starts the uptime again from 0; the wall clock goes on.
    void reboot();

    // Rounded to the nearest; beyond a thousand years, and for what is no number, a thousand years.
    static std::int64_t microseconds(double seconds);
    static ZRMSimulatedMoment wallMoment(ZRMDate date);

  private:
    std::int64_t uptime_ = microseconds(kStartUptimeSeconds);
    std::int64_t wallOffset_ = microseconds(kStartSecondsSince1970 - kStartUptimeSeconds);
};
