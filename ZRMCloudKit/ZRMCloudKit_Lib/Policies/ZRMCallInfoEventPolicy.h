// How often a connected call is looked at again.
#pragma once

#include <cstdint>

// Immutable.
class ZRMCallInfoEventPolicy {
  public:
    // One check after two minutes.
    static ZRMCallInfoEventPolicy defaultPolicy() { return {1, 120}; }

    // The interval is in seconds. A count of 0 means checks without end.
    ZRMCallInfoEventPolicy(std::uint64_t activeStateCheckCount, double activeStateCheckInterval)
        : activeStateCheckCount_(activeStateCheckCount),
          activeStateCheckInterval_(activeStateCheckInterval) {}

    [[nodiscard]] std::uint64_t activeStateCheckCount() const { return activeStateCheckCount_; }
    // Seconds between two checks.
    [[nodiscard]] double activeStateCheckInterval() const { return activeStateCheckInterval_; }

    friend bool operator==(const ZRMCallInfoEventPolicy&, const ZRMCallInfoEventPolicy&) = default;

  private:
    std::uint64_t activeStateCheckCount_;
    double activeStateCheckInterval_;
};
