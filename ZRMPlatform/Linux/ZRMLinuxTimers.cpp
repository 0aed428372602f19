#include "ZRMPlatform/Linux/ZRMLinuxTimers.h"

#include <algorithm>

#include "ZRMPlatform/Linux/ZRMLinuxThread.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

struct ZRMLinuxTimer::RunEnd {
    explicit RunEnd(ZRMLinuxTimer& ended) : timer(ended) {}
    ~RunEnd() {
        const ZRMLockGuard lock(timer.mutex_);
        timer.isRunPending_ = false;
    }
    RunEnd(const RunEnd&) = delete;
    RunEnd& operator=(const RunEnd&) = delete;

    ZRMLinuxTimer& timer;
};

ZRMLinuxTimer::ZRMLinuxTimer(std::function<void(ZRMTask)> lane, ZRMTask fire, double periodSeconds)
    : lane_(std::move(lane)),
      period_(zrm_timePoint({periodSeconds}).time_since_epoch()),
      fire_(std::make_shared<const ZRMTask>(std::move(fire))) {}

void ZRMLinuxTimer::cancel() {
    ZRMLinuxTimers::shared().remove(*this);
    std::shared_ptr<const ZRMTask>
        dropped;  // its destructor runs code of the caller's: after the lock
    const ZRMLockGuard lock(mutex_);
    dropped.swap(fire_);
}

void ZRMLinuxTimer::post() {
    {
        const ZRMLockGuard lock(mutex_);
        if (!fire_ || isRunPending_) {
            return;
        }
        isRunPending_ = true;
    }
    lane_([timer = shared_from_this()] { timer->run(); });
}

void ZRMLinuxTimer::run() {
    std::shared_ptr<const ZRMTask> fire;
    {
        const ZRMLockGuard lock(mutex_);
        fire = fire_;
        if (period_.count() == 0) {
            fire_.reset();
        }
    }
    const RunEnd end(*this);  // also when the task throws
    if (fire) {
        (*fire)();
    }
}

std::optional<ZRMLinuxTimePoint> ZRMLinuxTimer::nextAfter(ZRMLinuxTimePoint due,
                                                          ZRMLinuxTimePoint now) const {
    const ZRMLockGuard lock(mutex_);
    if (!fire_ || period_.count() == 0) {
        return std::nullopt;
    }
    return due + period_ * ((now - due) / period_ + 1);
}

ZRMLinuxTimers& ZRMLinuxTimers::shared() {
    static auto* const timers = new ZRMLinuxTimers;
    return *timers;
}

void ZRMLinuxTimers::add(const std::shared_ptr<ZRMLinuxTimer>& timer, ZRMLinuxTimePoint due) {
    bool isFirst = false;
    {
        const ZRMLockGuard lock(mutex_);
        schedule_.emplace(due, timer);
        isFirst = schedule_.begin()->second == timer;
        if (!isStarted_) {
            isStarted_ = zrm_startThread("zrm-timers", [this] { serve(); });
        }
    }
    if (isFirst) {
        changed_.notifyOne();
    }
}

void ZRMLinuxTimers::remove(const ZRMLinuxTimer& timer) {
    std::shared_ptr<ZRMLinuxTimer> dropped;
    const ZRMLockGuard lock(mutex_);
    const auto found = std::ranges::find_if(
        schedule_, [&timer](const auto& entry) { return entry.second.get() == &timer; });
    if (found != schedule_.end()) {
        dropped = std::move(found->second);
        schedule_.erase(found);
    }
}

// The wait is for a moment of the wall clock, so the kernel ends it when that clock is set forward.
void ZRMLinuxTimers::serve() {
    const ZRMLockGuard lock(mutex_);
    for (;;) {
        if (schedule_.empty()) {
            changed_.wait(mutex_);
        } else {
            const auto due = schedule_.begin()->first;
            changed_.waitUntil(mutex_, due);
        }
        postDue();
    }
}

void ZRMLinuxTimers::postDue() {
    const auto now = std::chrono::system_clock::now();
    while (!schedule_.empty() && schedule_.begin()->first <= now) {
        auto entry = schedule_.extract(schedule_.begin());
        const auto timer = entry.mapped();
        if (const auto next = timer->nextAfter(entry.key(), now)) {
            schedule_.emplace(*next, timer);
        }
        mutex_.unlock();
        timer->post();
        mutex_.lock();
    }
}
