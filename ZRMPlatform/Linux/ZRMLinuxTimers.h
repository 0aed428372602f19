// One-shot and repeating timers against the wall clock.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>

#include "ZRMPlatform/Linux/ZRMLinuxWallTime.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMQueue.h"

// A queue's timer. `fire` is handed to `lane` whenever the timer is due; the timer lets go of it
// when it was cancelled or has run for the last time.
class ZRMLinuxTimer : public ZRMTimerHandle, public std::enable_shared_from_this<ZRMLinuxTimer> {
  public:
    // A period of 0 makes a one-shot timer.
    ZRMLinuxTimer(std::function<void(ZRMTask)> lane, ZRMTask fire, double periodSeconds);

    void cancel() override;

    // Hands a run to the lane, unless the one before it is still waiting or under way.
    void post();

    // The first moment after `now` that lies whole periods after `due`; absent for a one-shot timer
    // and a cancelled one.
    [[nodiscard]] std::optional<ZRMLinuxTimePoint> nextAfter(ZRMLinuxTimePoint due,
                                                             ZRMLinuxTimePoint now) const;

  private:
    struct RunEnd;

    void run();

    const std::function<void(ZRMTask)> lane_;
    const std::chrono::nanoseconds period_;
    mutable ZRMMutex mutex_;
    std::shared_ptr<const ZRMTask> fire_ ZRM_GUARDED_BY(mutex_);  // absent once cancelled or done
    bool isRunPending_ ZRM_GUARDED_BY(mutex_) = false;
};

// The process's timers in the order they are due, then in that of their making, served by one
// thread that lives as long as the process.
class ZRMLinuxTimers {
  public:
    static ZRMLinuxTimers& shared();

    void add(const std::shared_ptr<ZRMLinuxTimer>& timer, ZRMLinuxTimePoint due);
    void remove(const ZRMLinuxTimer& timer);

  private:
    using Schedule = std::multimap<ZRMLinuxTimePoint, std::shared_ptr<ZRMLinuxTimer>>;

    [[noreturn]] void serve();
    void postDue() ZRM_REQUIRES(mutex_);  // lets go of the lock for each

    ZRMMutex mutex_;
    ZRMConditionVariable changed_;
    Schedule schedule_ ZRM_GUARDED_BY(mutex_);
    bool isStarted_ ZRM_GUARDED_BY(mutex_) = false;
};
