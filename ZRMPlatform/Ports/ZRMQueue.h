// Work queues and timers.
#pragma once

#include <functional>
#include <memory>
#include <string>

using ZRMTask = std::function<void()>;

// A timer under way. Dropping the handle leaves the timer running.
class ZRMTimerHandle {
  public:
    virtual ~ZRMTimerHandle() = default;
    // From any thread, any number of times. When called on the timer's own serial queue, the task
    // does not run again; from elsewhere a run that already began may still finish.
    virtual void cancel() = 0;
};

// Order: a serial queue runs its tasks one at a time, in the order of the posts; what a task wrote,
// the next one sees. A concurrent queue starts tasks in order and runs them side by side.
// Re-entrancy: a task may post to any queue; a post never runs the task before it returns.
// Shutdown: dropping the last reference lets posted tasks and timers run; process exit drops them.
// Tasks must not throw.
class ZRMQueue {
  public:
    virtual ~ZRMQueue() = default;

    [[nodiscard]] virtual const std::string& label() const = 0;

    // From any thread.
    virtual void post(ZRMTask task) = 0;

    // Posts the task once the wall clock has advanced by `delaySeconds` (0 or less: at once). A
    // wall clock that jumps forward makes the timer due early. Timers due at the same moment fire
    // in the order of their making.
    virtual std::shared_ptr<ZRMTimerHandle> postAfter(double delaySeconds, ZRMTask task) = 0;

    // Posts the task every `periodSeconds` (above 0) until cancelled, first after one period. A run
    // that is late does not bunch up: periods that passed meanwhile are skipped.
    virtual std::shared_ptr<ZRMTimerHandle> postEvery(double periodSeconds, ZRMTask task) = 0;

    // Whether the caller runs inside a task of this queue.
    [[nodiscard]] virtual bool isCurrent() const = 0;
};
