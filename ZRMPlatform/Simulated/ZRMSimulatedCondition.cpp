#include "ZRMPlatform/Simulated/ZRMSimulatedCondition.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

constexpr double kHopelessSeconds = 100.0 * 366 * 86400;

[[noreturn]] void endProgram(const char* why) {
    std::fprintf(stderr, "Simulated device: %s\n", why);
    std::abort();
}

// Restores the waiter's books however the wait ends, an ended process included.
class Waiting {
  public:
    Waiting(bool& locked, std::size_t& waiting) : locked_(locked), waiting_(waiting) {
        locked_ = false;
        ++waiting_;
    }
    ~Waiting() {
        locked_ = true;
        --waiting_;
    }
    Waiting(const Waiting&) = delete;
    Waiting& operator=(const Waiting&) = delete;

  private:
    bool& locked_;
    std::size_t& waiting_;
};

}  // namespace

ZRMSimulatedCondition::ZRMSimulatedCondition(std::shared_ptr<ZRMSimulatedProcess> process)
    : process_(std::move(process)) {}

void ZRMSimulatedCondition::lock() {
    if (locked_ && process_->isAlive()) {
        endProgram("a condition is locked twice");
    }
    locked_ = true;
}

void ZRMSimulatedCondition::unlock() {
    locked_ = false;
}

bool ZRMSimulatedCondition::waitUntil(ZRMDate deadline) {
    const Waiting waiting(locked_, waiting_);
    auto& scheduler = *process_->scheduler();
    const auto moment = ZRMSimulatedTime::wallMoment(deadline);
    const auto now = scheduler.time()->now();
    // A hopeless wait still runs whatever is due or planned; only time itself does not pass for it.
    const bool hopeless = deadline.secondsSince(now) > kHopelessSeconds;
    const auto woken = [&] {
        if (signals_ == 0 && hopeless && process_->isAlive() && scheduler.isIdle() &&
            !scheduler.nextTimerUptime()) {
            endProgram("a thread waits for ever: nothing is left that could signal it");
        }
        return signals_ > 0;
    };
    const bool signalled = scheduler.runUntil(woken, moment);
    if (signalled) {
        --signals_;
    }
    return signalled;
}

void ZRMSimulatedCondition::signal() {
    if (signals_ < waiting_) {
        ++signals_;
    }
}
