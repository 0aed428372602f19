#include "ZRMCoreKit/ZRMCoreKit_Lib/Helpers/ZRMManualResetEvent.h"

#include <mutex>
#include <utility>

namespace {

constexpr double kLongestWaitSeconds = 315360000;

}  // namespace

std::shared_ptr<ZRMManualResetEvent> ZRMManualResetEvent::manualResetEvent(
    ZRMExecutor& executor, std::shared_ptr<ZRMClock> clock) {
    return std::make_shared<ZRMManualResetEvent>(executor.makeCondition(), std::move(clock));
}

ZRMManualResetEvent::ZRMManualResetEvent(std::unique_ptr<ZRMCondition> condition,
                                         std::shared_ptr<ZRMClock> clock)
    : condition_(std::move(condition)), clock_(std::move(clock)) {}

void ZRMManualResetEvent::signal() {
    setSignaled(true);
}

void ZRMManualResetEvent::reset() {
    setSignaled(false);
}

void ZRMManualResetEvent::setSignaled(bool signaled) {
    const std::lock_guard lock(*condition_);
    signaled_ = signaled;
    condition_->signal();
}

bool ZRMManualResetEvent::waitUntilDate(ZRMDate deadline) {
    const std::lock_guard lock(*condition_);
    return signaled_ || condition_->waitUntil(deadline);
}

bool ZRMManualResetEvent::wait() {
    return waitUntilDate(clock_->now().addingSeconds(kLongestWaitSeconds));
}
