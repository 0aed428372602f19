#include "ZRMPlatform/Simulated/ZRMSimulatedTimer.h"

#include <algorithm>
#include <utility>

#include "ZRMPlatform/Simulated/ZRMSimulatedQueue.h"

ZRMSimulatedTimer::ZRMSimulatedTimer(std::weak_ptr<ZRMSimulatedScheduler> scheduler,
                                     std::shared_ptr<ZRMSimulatedQueue> queue,
                                     ZRMSimulatedMoment due, double periodSeconds,
                                     std::uint64_t sequence, ZRMTask task)
    : scheduler_(std::move(scheduler)),
      queue_(std::move(queue)),
      due_(due),
      period_(periodSeconds > 0
                  ? std::max<std::int64_t>(1, ZRMSimulatedTime::microseconds(periodSeconds))
                  : 0),
      sequence_(sequence),
      task_(std::make_shared<const ZRMTask>(std::move(task))) {}

void ZRMSimulatedTimer::cancel() {
    cancelled_ = true;
    const auto self = shared_from_this();  // the scheduler's may be the last one
    if (const auto scheduler = scheduler_.lock()) {
        scheduler->unschedule(*this);
    }
    queue_.reset();
    task_.reset();
}

void ZRMSimulatedTimer::fire(ZRMSimulatedScheduler& scheduler) {
    if (posted_ || !queue_) {
        return;
    }
    posted_ = true;
    scheduler.post(queue_, [self = shared_from_this()] { self->run(); });
}

void ZRMSimulatedTimer::moveOn(const ZRMSimulatedTime& time) {
    const std::int64_t now = due_.clock == ZRMSimulatedMoment::Clock::Wall
                                 ? time.wallMicroseconds()
                                 : time.uptimeMicroseconds();
    const std::int64_t late = std::max<std::int64_t>(0, now - due_.microseconds);
    due_.microseconds += (late / period_ + 1) * period_;
}

void ZRMSimulatedTimer::run() {
    posted_ = false;
    if (cancelled_) {
        return;
    }
    const auto task = isRepeating() ? task_ : std::exchange(task_, nullptr);
    (*task)();
}
