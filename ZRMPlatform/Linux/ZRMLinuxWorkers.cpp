#include "ZRMPlatform/Linux/ZRMLinuxWorkers.h"

#include <utility>

#include "ZRMPlatform/Linux/ZRMLinuxThread.h"

void ZRMLinuxWorkers::post(ZRMTask task) {
    bool isThreadNeeded = false;
    {
        const ZRMLockGuard lock(mutex_);
        tasks_.push_back(std::move(task));
        isThreadNeeded = needsThread();
        threads_ += isThreadNeeded ? 1 : 0;
    }
    if (!isThreadNeeded) {
        posted_.notifyOne();
    } else if (!zrm_startThread(name_, [this] { serve(); })) {
        const ZRMLockGuard lock(mutex_);
        --threads_;
    }
}

bool ZRMLinuxWorkers::needsThread() const {
    return threads_ < mostThreads_ && tasks_.size() > static_cast<std::size_t>(idleThreads_);
}

void ZRMLinuxWorkers::serve() {
    ZRMUniqueLock lock(mutex_);
    for (;;) {
        if (tasks_.empty()) {
            ++idleThreads_;
            posted_.wait(mutex_);
            --idleThreads_;
            continue;
        }
        auto task = std::move(tasks_.front());
        tasks_.pop_front();
        lock.unlock();
        std::exchange(task, nullptr)();
        lock.lock();
    }
}
