// The library's outgoing event pipe: events are stored, uploaded one by one and then deleted.
#pragma once

#include <cstdint>

#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsEvent.h"

// May be used from any thread.
class ZRMStatisticsService {
  public:
    virtual ~ZRMStatisticsService() = default;

    // Also uploads what earlier runs left in the store. Starting twice only logs.
    virtual void start() = 0;
    // Uploads under way go on, but nothing learns of their end. Stopping twice only logs.
    virtual void stop() = 0;
    // Builds the upload body on the calling thread, then stores and uploads it in the background.
    // Priorities are 1 (first) to 3. An event that makes no JSON is dropped with a log line; before
    // start() it is dropped with a line on the console.
    virtual void send(const ZRMStatisticsEvent& event, std::int16_t priority) = 0;
};
