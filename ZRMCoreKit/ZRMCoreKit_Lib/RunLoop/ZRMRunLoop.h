// A loop that carries timers and other sources on one serial queue.
#pragma once

#include <functional>
#include <memory>
#include <unordered_set>

#include "ZRMPlatform/Ports/ZRMExecutor.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

class ZRMTimer;

// The only mode there is: every source of a loop runs in it.
enum class ZRMRunLoopMode { Default };

// Work on a run loop never overlaps. A run loop costs no thread: it is a serial queue of the
// executor with an end. A loop lives as long as it has timers. May be used from any thread.
class ZRMRunLoop : public std::enable_shared_from_this<ZRMRunLoop> {
  public:
    // The loop whose work the caller runs in; the main loop where there is none.
    static std::shared_ptr<ZRMRunLoop> currentRunLoop(const std::shared_ptr<ZRMExecutor>& executor);
    static std::shared_ptr<ZRMRunLoop> mainRunLoop(const std::shared_ptr<ZRMExecutor>& executor);

    explicit ZRMRunLoop(std::shared_ptr<ZRMQueue> queue);
    ZRMRunLoop(const ZRMRunLoop&) = delete;
    ZRMRunLoop& operator=(const ZRMRunLoop&) = delete;

    [[nodiscard]] const std::shared_ptr<ZRMQueue>& queue() const { return queue_; }

    // Runs the work at once, on the caller's thread, as the loop's own: for a callback that a port
    // delivers on the loop's queue.
    void perform(const std::function<void()>& work);

    // Starts the timer, which the loop keeps until it fired for the last time or was invalidated.
    // A loop that has ended takes none. A timer is added to one loop, once.
    void addTimer(const std::shared_ptr<ZRMTimer>& timer);

    // Lets go of every timer; from now on nothing runs.
    void end();
    [[nodiscard]] bool isEnded() const;

  private:
    friend class ZRMTimer;
    void removeTimer(const std::shared_ptr<ZRMTimer>& timer);

    const std::shared_ptr<ZRMQueue> queue_;
    mutable ZRMMutex mutex_;  // guards what follows; never held while work runs
    bool ended_ ZRM_GUARDED_BY(mutex_) = false;
    std::unordered_set<std::shared_ptr<ZRMTimer>> timers_ ZRM_GUARDED_BY(mutex_);
};
