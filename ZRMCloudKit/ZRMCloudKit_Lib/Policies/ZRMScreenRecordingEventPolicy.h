// How often a screen recording that lasts is reported again.
#pragma once

#include <cstdint>

// Immutable.
class ZRMScreenRecordingEventPolicy {
  public:
    // One further report after a minute.
    static ZRMScreenRecordingEventPolicy defaultPolicy() { return {1, 60}; }

    // The interval is in seconds.
    ZRMScreenRecordingEventPolicy(std::uint64_t retryAttempts, double interval)
        : numberOfRetryAttempts_(retryAttempts), retryInterval_(interval) {}

    [[nodiscard]] std::uint64_t numberOfRetryAttempts() const { return numberOfRetryAttempts_; }
    // Seconds between two reports.
    [[nodiscard]] double retryInterval() const { return retryInterval_; }

    friend bool operator==(const ZRMScreenRecordingEventPolicy&,
                           const ZRMScreenRecordingEventPolicy&) = default;

  private:
    std::uint64_t numberOfRetryAttempts_;
    double retryInterval_;
};
