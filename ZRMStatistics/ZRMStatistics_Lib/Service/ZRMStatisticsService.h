// The library's outgoing event pipe: events are stored, uploaded one by one and then deleted.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsEvent.h"

// May be used from any thread.
class ZRMStatisticsService {
  public:
    virtual ~ZRMStatisticsService() = default;

    // Also uploads what earlier runs left in the store. Starting twice only logs.
    virtual void start() = 0;
    // Uploads under way go on, but nothing learns of their end. Stopping twice only logs.
    virtual void stop() = 0;
    // Takes the event's parameters on the calling thread; encodes, stores and uploads them in the
    // background. Priorities are 1 (first) to 3. An event that makes no JSON is dropped with a log
    // line; before start() it is dropped with a line on the console.
    virtual void send(const ZRMStatisticsEvent& event, std::int16_t priority) = 0;
    // The same for an event whose parameters can be had quickly, from any thread: they are taken
    // in the background too.
    virtual void send(std::shared_ptr<const ZRMStatisticsEvent> event, std::int16_t priority) = 0;

    // How many events are taken over and neither answered nor dropped, what earlier runs left in
    // the store included. Counts an event from before send() returns until its record is deleted,
    // so 0 means that nothing is on its way. 0 before start().
    [[nodiscard]] virtual std::size_t pendingEventCount() const = 0;

    // How many of them are still on their way into the store, and would be lost if the process
    // ended now. Events that were dropped, or that are uploaded without a store, do not count.
    [[nodiscard]] virtual std::size_t unstoredEventCount() const = 0;
};
