// The server's clock, learnt once from a "Date" header and advanced by the local uptime.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ZRMPlatform/Ports/ZRMClock.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

// May be used from any thread.
class ZRMServerTimeProvider {
  public:
    explicit ZRMServerTimeProvider(std::shared_ptr<ZRMClock> clock);

    // The text of a "Date" response header. Only the first good one counts; a text that is no date
    // leaves the time unknown.
    void setTime(const std::string& dateHeader);
    // Milliseconds since 1970, or 0 while not valid.
    [[nodiscard]] std::int64_t getTime() const;
    [[nodiscard]] bool isValid() const;

  private:
    std::shared_ptr<ZRMClock> clock_;
    mutable ZRMMutex mutex_;
    std::int64_t serverResponseTime_ ZRM_GUARDED_BY(mutex_) = 0;  // milliseconds since 1970
    std::int64_t upTime_ ZRM_GUARDED_BY(mutex_) =
        0;  // milliseconds of uptime when the date was taken
};
