#include "Benchmarks/Host/ZRMTimedMainQueue.h"

#include <algorithm>
#include <atomic>

struct ZRMTimedMainQueue::Timer final : ZRMTimerHandle {
    void cancel() override { isCancelled = true; }

    ZRMTask task;
    double periodSeconds = 0;  // 0 for a single run
    std::atomic<bool> isCancelled{false};
};

void ZRMTimedMainQueue::post(ZRMTask task) {
    add(Clock::now(), std::move(task));
}

std::shared_ptr<ZRMTimerHandle> ZRMTimedMainQueue::postAfter(double delaySeconds, ZRMTask task) {
    return addTimer(delaySeconds, 0, std::move(task));
}

std::shared_ptr<ZRMTimerHandle> ZRMTimedMainQueue::postEvery(double periodSeconds, ZRMTask task) {
    return addTimer(periodSeconds, periodSeconds, std::move(task));
}

bool ZRMTimedMainQueue::isCurrent() const {
    return std::this_thread::get_id() == thread_;
}

double ZRMTimedMainQueue::takeLongestTask() {
    const std::lock_guard lock(mutex_);
    return std::exchange(longestSeconds_, 0);
}

void ZRMTimedMainQueue::add(Clock::time_point due, ZRMTask task) {
    const std::lock_guard lock(mutex_);
    tasks_.emplace(due, std::move(task));
    if (!std::exchange(isStarted_, true)) {
        std::thread thread([this] { serve(); });
        thread_ = thread.get_id();
        thread.detach();
    }
    changed_.notify_one();
}

std::shared_ptr<ZRMTimerHandle> ZRMTimedMainQueue::addTimer(double delaySeconds,
                                                            double periodSeconds, ZRMTask task) {
    auto timer = std::make_shared<Timer>();
    timer->task = std::move(task);
    timer->periodSeconds = periodSeconds;
    arm(timer, delaySeconds);
    return timer;
}

void ZRMTimedMainQueue::arm(const std::shared_ptr<Timer>& timer, double delaySeconds) {
    constexpr double kLongestSeconds = 1e6;
    const std::chrono::duration<double> delay(std::clamp(delaySeconds, 0.0, kLongestSeconds));
    add(Clock::now() + std::chrono::duration_cast<Clock::duration>(delay), [this, timer] {
        if (timer->isCancelled) {
            return;
        }
        if (timer->periodSeconds > 0) {
            arm(timer, timer->periodSeconds);
        }
        timer->task();
    });
}

void ZRMTimedMainQueue::serve() {
    std::unique_lock lock(mutex_);
    for (;;) {
        if (tasks_.empty()) {
            changed_.wait(lock);
        } else if (const auto due = tasks_.begin()->first; due > Clock::now()) {
            changed_.wait_until(lock, due);
        } else {
            const auto task = tasks_.extract(tasks_.begin());
            lock.unlock();
            const auto begin = Clock::now();
            task.mapped()();
            const std::chrono::duration<double> taken = Clock::now() - begin;
            lock.lock();
            longestSeconds_ = std::max(longestSeconds_, taken.count());
        }
    }
}
