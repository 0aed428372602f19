// Threads that run tasks for the life of the process.
#pragma once

#include <deque>

#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMQueue.h"

// Tasks start in the order of their posts. A thread is started when a task finds none idle, up to
// the limit; one that the system refuses is asked for again with the next task. Never destroyed:
// tasks may be under way while the process exits, and exit must not wait for them.
class ZRMLinuxWorkers {
  public:
    // The name shows in debuggers (15 bytes at most).
    ZRMLinuxWorkers(const char* threadName, int mostThreads)
        : name_(threadName), mostThreads_(mostThreads) {}

    // From any thread. A task must not throw.
    void post(ZRMTask task);

  private:
    [[nodiscard]] bool needsThread() const ZRM_REQUIRES(mutex_);
    [[noreturn]] void serve();

    const char* const name_;
    const int mostThreads_;
    ZRMMutex mutex_;
    ZRMConditionVariable posted_;
    std::deque<ZRMTask> tasks_ ZRM_GUARDED_BY(mutex_);
    int threads_ ZRM_GUARDED_BY(mutex_) = 0;
    // Those that a post woke and that took nothing yet, too.
    int idleThreads_ ZRM_GUARDED_BY(mutex_) = 0;
};
