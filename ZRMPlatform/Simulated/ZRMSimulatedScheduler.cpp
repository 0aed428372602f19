#include "ZRMPlatform/Simulated/ZRMSimulatedScheduler.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <utility>

#include "ZRMPlatform/Simulated/ZRMSimulatedQueue.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedTimer.h"

ZRMSimulatedScheduler::ZRMSimulatedScheduler(std::shared_ptr<ZRMSimulatedTime> time)
    : time_(std::move(time)) {}

ZRMSimulatedScheduler::~ZRMSimulatedScheduler() = default;

void ZRMSimulatedScheduler::post(const std::shared_ptr<ZRMSimulatedQueue>& queue, ZRMTask task) {
    if (stopped_) {
        return;
    }
    const std::uint64_t sequence = nextSequence_++;
    if (queue->kind() == ZRMSimulatedQueue::Kind::Concurrent) {
        ready_.emplace(sequence, Ready{queue, std::move(task)});
        return;
    }
    queue->waiting_.emplace_back(sequence, std::move(task));
    offerNextOf(queue);
}

void ZRMSimulatedScheduler::offerNextOf(const std::shared_ptr<ZRMSimulatedQueue>& queue) {
    if (queue->engaged_ || queue->waiting_.empty()) {
        return;
    }
    auto [sequence, task] = std::move(queue->waiting_.front());
    queue->waiting_.pop_front();
    queue->engaged_ = true;
    ready_.emplace(sequence, Ready{queue, std::move(task)});
}

std::shared_ptr<ZRMTimerHandle> ZRMSimulatedScheduler::addTimer(
    const std::shared_ptr<ZRMSimulatedQueue>& queue, ZRMSimulatedMoment due, double periodSeconds,
    ZRMTask task) {
    auto timer = std::make_shared<ZRMSimulatedTimer>(weak_from_this(), queue, due, periodSeconds,
                                                     nextSequence_++, std::move(task));
    if (!stopped_) {
        schedule(timer);
    }
    return timer;
}

ZRMSimulatedScheduler::Timers& ZRMSimulatedScheduler::timersOf(ZRMSimulatedMoment::Clock clock) {
    return clock == ZRMSimulatedMoment::Clock::Wall ? wallTimers_ : uptimeTimers_;
}

void ZRMSimulatedScheduler::schedule(const std::shared_ptr<ZRMSimulatedTimer>& timer) {
    timersOf(timer->due().clock)
        .emplace(TimerKey{timer->due().microseconds, timer->sequence()}, timer);
}

void ZRMSimulatedScheduler::unschedule(const ZRMSimulatedTimer& timer) {
    timersOf(timer.due().clock).erase({timer.due().microseconds, timer.sequence()});
}

std::optional<std::int64_t> ZRMSimulatedScheduler::nextTimerUptime() const {
    std::optional<std::int64_t> next;
    for (const auto* timers : {&wallTimers_, &uptimeTimers_}) {
        if (!timers->empty()) {
            const std::int64_t due = time_->uptimeOf(timers->begin()->second->due());
            next = next ? std::min(*next, due) : due;
        }
    }
    return next;
}

void ZRMSimulatedScheduler::fireDueTimers() {
    while (fireNextDueTimer()) {
    }
}

bool ZRMSimulatedScheduler::fireNextDueTimer() {
    std::shared_ptr<ZRMSimulatedTimer> first;
    TimerKey firstKey{time_->uptimeMicroseconds(), std::numeric_limits<std::uint64_t>::max()};
    for (const auto* timers : {&wallTimers_, &uptimeTimers_}) {
        if (!timers->empty()) {
            const auto& timer = timers->begin()->second;
            const TimerKey key{time_->uptimeOf(timer->due()), timer->sequence()};
            if (key < firstKey) {
                firstKey = key;
                first = timer;
            }
        }
    }
    if (!first) {
        return false;
    }
    unschedule(*first);
    if (first->isRepeating()) {
        first->moveOn(*time_);
        schedule(first);
    }
    first->fire(*this);
    return true;
}

ZRMSimulatedScheduler::Ready ZRMSimulatedScheduler::takeReady() {
    auto chosen = ready_.begin();
    if (shuffle_) {
        std::advance(chosen, static_cast<std::ptrdiff_t>((*shuffle_)() % ready_.size()));
    }
    Ready ready = std::move(chosen->second);
    ready_.erase(chosen);
    return ready;
}

bool ZRMSimulatedScheduler::runOne() {
    if (stopped_) {
        return false;
    }
    fireDueTimers();
    if (ready_.empty()) {
        return false;
    }
    run(takeReady());
    return true;
}

void ZRMSimulatedScheduler::run(Ready ready) {
    ++tasksRun_;
    running_.push_back(ready.queue.get());
    try {
        ready.task();
    } catch (const ZRMSimulatedProcessEnded&) {
        // The process was killed while the task waited: this is how far it came.
    }
    ready.task = nullptr;  // what the task owned is let go of on its own queue
    running_.pop_back();
    if (ready.queue->kind() == ZRMSimulatedQueue::Kind::Serial) {
        ready.queue->engaged_ = false;
        offerNextOf(ready.queue);
    }
}

bool ZRMSimulatedScheduler::runUntil(const std::function<bool()>& done,
                                     ZRMSimulatedMoment deadline) {
    while (!done()) {
        if (stopped_) {
            throw ZRMSimulatedProcessEnded{};
        }
        if (runOne()) {
            continue;
        }
        const std::int64_t limit = time_->uptimeOf(deadline);
        const auto next = nextTimerUptime();
        if (!next || *next > limit) {
            time_->advanceTo(limit);
            return done();
        }
        time_->advanceTo(*next);
    }
    return true;
}

void ZRMSimulatedScheduler::runUntilMoment(ZRMSimulatedMoment deadline) {
    const auto ended = [this] { return stopped_; };
    if (!runUntil(ended, deadline)) {
        while (runOne()) {
        }
    }
}

const ZRMSimulatedQueue* ZRMSimulatedScheduler::currentQueue() const {
    return running_.empty() ? nullptr : running_.back();
}

bool ZRMSimulatedScheduler::isIdle() const {
    const auto next = nextTimerUptime();
    return stopped_ || (ready_.empty() && (!next || *next > time_->uptimeMicroseconds()));
}

void ZRMSimulatedScheduler::setSeed(std::optional<std::uint64_t> seed) {
    shuffle_.reset();
    if (seed) {
        shuffle_.emplace(*seed);
    }
}

void ZRMSimulatedScheduler::dropEverything() {
    // Destructors of what the tasks hold may post and cancel: they meet empty containers.
    const auto ready = std::exchange(ready_, {});
    for (const auto& [sequence, entry] : ready) {
        const auto waiting = std::exchange(entry.queue->waiting_, {});
    }
    // A timer's task may own the timer's handle: cancelling parts them.
    for (auto* timers : {&wallTimers_, &uptimeTimers_}) {
        for (const auto& [key, timer] : std::exchange(*timers, {})) {
            timer->cancel();
        }
    }
}
