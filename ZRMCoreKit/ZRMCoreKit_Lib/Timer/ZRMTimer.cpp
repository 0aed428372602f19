#include "ZRMCoreKit/ZRMCoreKit_Lib/Timer/ZRMTimer.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/RunLoop/ZRMRunLoop.h"

namespace {

constexpr double kShortestIntervalSeconds = 0.0001;

}  // namespace

ZRMTimer::ZRMTimer(double intervalSeconds, bool repeats, std::shared_ptr<ZRMBlockHolder> target,
                   UserInfo userInfo)
    : intervalSeconds_(intervalSeconds > 0 ? intervalSeconds : kShortestIntervalSeconds),
      repeats_(repeats),
      target_(std::move(target)),
      userInfo_(std::move(userInfo)) {}

void ZRMTimer::schedule(const std::shared_ptr<ZRMRunLoop>& runLoop) {
    // Weakly, because what the queue keeps for the handle would otherwise keep the handle.
    auto task = [weak = weak_from_this(), weakLoop = std::weak_ptr(runLoop)] {
        const auto self = weak.lock();
        const auto loop = weakLoop.lock();
        if (self && loop) {
            self->fire(loop);
        }
    };
    {
        const ZRMLockGuard lock(mutex_);
        runLoop_ = runLoop;
        handle_ = repeats_ ? runLoop->queue()->postEvery(intervalSeconds_, std::move(task))
                           : runLoop->queue()->postAfter(intervalSeconds_, std::move(task));
    }
    // Invalidated on another thread before there was a loop to leave.
    if (!isValid()) {
        invalidate();
    }
}

void ZRMTimer::fire(const std::shared_ptr<ZRMRunLoop>& runLoop) {
    if (!isValid() || runLoop->isEnded()) {
        return;
    }
    if (!repeats_) {
        invalidate();
    }
    runLoop->perform([this] { target_->invoke(); });
}

void ZRMTimer::invalidate() {
    const auto self = shared_from_this();
    valid_ = false;
    std::shared_ptr<ZRMTimerHandle> handle;
    std::shared_ptr<ZRMRunLoop> runLoop;
    {
        const ZRMLockGuard lock(mutex_);
        handle.swap(handle_);
        runLoop = runLoop_.lock();
    }
    if (handle) {
        handle->cancel();
    }
    if (runLoop) {
        runLoop->removeTimer(self);
    }
}
