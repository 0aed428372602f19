// How one simulated exchange goes over time.
#pragma once

#include <optional>

#include "ZRMPlatform/Simulated/ZRMSimulatedNetwork.h"

// Pure: the answer and the time-outs decide what has arrived when, and how it ends. The headers
// come after the answer's delay, then the body's bytes in proportion to the time. The request
// time-out bounds the wait for the headers, the resource time-out the whole; one that is not above
// 0 counts as 60 seconds.
class ZRMSimulatedTransfer {
  public:
    ZRMSimulatedTransfer(ZRMSimulatedAnswer answer,
                         const ZRMUrlSessionConfiguration& configuration);

    // From the start on.
    [[nodiscard]] double endSeconds() const { return endSeconds_; }
    [[nodiscard]] ZRMUrlExchange outcome() const;
    // What has arrived by then, broken off with that code.
    [[nodiscard]] ZRMUrlExchange brokenOff(double afterSeconds, int errorCode) const;

  private:
    [[nodiscard]] ZRMUrlExchange arrivedBy(double seconds) const;

    ZRMSimulatedAnswer answer_;
    double endSeconds_;
    std::optional<int> errorAtEnd_;
};
