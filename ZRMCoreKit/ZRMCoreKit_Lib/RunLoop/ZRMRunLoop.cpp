#include "ZRMCoreKit/ZRMCoreKit_Lib/RunLoop/ZRMRunLoop.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Helpers/ZRMKeptAlive.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Timer/ZRMTimer.h"

namespace {

// The loop whose work this thread runs, if any.
thread_local ZRMRunLoop* threadRunLoop = nullptr;

class CurrentRunLoopScope {
  public:
    explicit CurrentRunLoopScope(ZRMRunLoop* runLoop)
        : outer_(std::exchange(threadRunLoop, runLoop)) {}
    ~CurrentRunLoopScope() { threadRunLoop = outer_; }
    CurrentRunLoopScope(const CurrentRunLoopScope&) = delete;
    CurrentRunLoopScope& operator=(const CurrentRunLoopScope&) = delete;

  private:
    ZRMRunLoop* outer_;
};

}  // namespace

std::shared_ptr<ZRMRunLoop> ZRMRunLoop::currentRunLoop(
    const std::shared_ptr<ZRMExecutor>& executor) {
    return threadRunLoop != nullptr ? threadRunLoop->shared_from_this() : mainRunLoop(executor);
}

std::shared_ptr<ZRMRunLoop> ZRMRunLoop::mainRunLoop(const std::shared_ptr<ZRMExecutor>& executor) {
    return std::make_shared<ZRMRunLoop>(executor->mainQueue());
}

ZRMRunLoop::ZRMRunLoop(std::shared_ptr<ZRMQueue> queue) : queue_(std::move(queue)) {}

void ZRMRunLoop::perform(const std::function<void()>& work) {
    const auto self = shared_from_this();
    const CurrentRunLoopScope scope(this);
    work();
}

void ZRMRunLoop::addTimer(const std::shared_ptr<ZRMTimer>& timer) {
    {
        const ZRMLockGuard lock(mutex_);
        if (ended_ || !timer->isValid()) {
            return;
        }
        timers_.insert(timer);
        ZRMKeptAlive::instance().keep(shared_from_this());
    }
    timer->schedule(shared_from_this());
}

void ZRMRunLoop::removeTimer(const std::shared_ptr<ZRMTimer>& timer) {
    std::shared_ptr<void> self;
    const ZRMLockGuard lock(mutex_);
    timers_.erase(timer);
    if (timers_.empty()) {
        self = ZRMKeptAlive::instance().release(this);
    }
}

void ZRMRunLoop::end() {
    std::unordered_set<std::shared_ptr<ZRMTimer>> timers;
    {
        const ZRMLockGuard lock(mutex_);
        ended_ = true;
        timers = timers_;
    }
    for (const auto& timer : timers) {
        timer->invalidate();
    }
}

bool ZRMRunLoop::isEnded() const {
    const ZRMLockGuard lock(mutex_);
    return ended_;
}
