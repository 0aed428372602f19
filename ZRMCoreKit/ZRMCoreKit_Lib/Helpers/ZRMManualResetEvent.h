// A flag that threads wait for.
#pragma once

#include <memory>

#include "ZRMPlatform/Ports/ZRMClock.h"
#include "ZRMPlatform/Ports/ZRMExecutor.h"

// May be used from any thread.
class ZRMManualResetEvent {
  public:
    // Not signaled at first.
    static std::shared_ptr<ZRMManualResetEvent> manualResetEvent(ZRMExecutor& executor,
                                                                 std::shared_ptr<ZRMClock> clock);

    ZRMManualResetEvent(std::unique_ptr<ZRMCondition> condition, std::shared_ptr<ZRMClock> clock);

    // Each wakes one waiter, if there is one.
    void signal();
    void reset();

    // True at once when signaled; otherwise waits once: true when woken before the deadline, by
    // whatever it was, false when the deadline passed first.
    bool waitUntilDate(ZRMDate deadline);
    // About ten years.
    bool wait();

  private:
    void setSignaled(bool signaled);

    const std::unique_ptr<ZRMCondition> condition_;
    const std::shared_ptr<ZRMClock> clock_;
    bool signaled_ = false;  // guarded by the condition
};
