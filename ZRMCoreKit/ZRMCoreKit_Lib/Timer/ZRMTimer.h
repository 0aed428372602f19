// A timer that a run loop carries.
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <string>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Helpers/ZRMBlockHolder.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMQueue.h"

class ZRMRunLoop;

// Does nothing until it is added to a run loop, which keeps it as long as it is valid. Fires on the
// loop's queue. May be used from any thread.
class ZRMTimer : public std::enable_shared_from_this<ZRMTimer> {
  public:
    using UserInfo = std::map<std::string, std::shared_ptr<ZRMBlockHolder>>;

    // An interval of 0 or less means 0.1 milliseconds. The holder is present; its block is
    // what the timer does.
    ZRMTimer(double intervalSeconds, bool repeats, std::shared_ptr<ZRMBlockHolder> target,
             UserInfo userInfo = {});
    ZRMTimer(const ZRMTimer&) = delete;
    ZRMTimer& operator=(const ZRMTimer&) = delete;

    [[nodiscard]] double timeIntervalSeconds() const { return intervalSeconds_; }
    [[nodiscard]] bool isRepeating() const { return repeats_; }
    [[nodiscard]] const UserInfo& userInfo() const { return userInfo_; }

    // From its making until it was invalidated or, unless it repeats, begins to fire.
    [[nodiscard]] bool isValid() const { return valid_; }
    // It does not fire any more. A block that runs at this moment on another thread goes on.
    void invalidate();

  private:
    friend class ZRMRunLoop;
    void schedule(const std::shared_ptr<ZRMRunLoop>& runLoop);
    void fire(const std::shared_ptr<ZRMRunLoop>& runLoop);

    const double intervalSeconds_;
    const bool repeats_;
    const std::shared_ptr<ZRMBlockHolder> target_;
    const UserInfo userInfo_;
    std::atomic<bool> valid_ = true;

    ZRMMutex mutex_;  // guards what follows
    std::shared_ptr<ZRMTimerHandle> handle_ ZRM_GUARDED_BY(mutex_);
    std::weak_ptr<ZRMRunLoop> runLoop_ ZRM_GUARDED_BY(mutex_);
};
