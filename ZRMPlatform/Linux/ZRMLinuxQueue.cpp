#include "ZRMPlatform/Linux/ZRMLinuxQueue.h"

#include <exception>
#include <utility>

#include "ZRMPlatform/Linux/ZRMLinuxConsoleLog.h"
#include "ZRMPlatform/Linux/ZRMLinuxTimers.h"

namespace {

thread_local const ZRMLinuxQueue* currentQueue = nullptr;

}  // namespace

ZRMLinuxQueue::ZRMLinuxQueue(std::string label, ZRMLinuxLane lane)
    : label_(std::move(label)), lane_(std::move(lane)) {}

void ZRMLinuxQueue::post(ZRMTask task) {
    lane_([queue = shared_from_this(), task = std::move(task)] { queue->run(task); });
}

std::shared_ptr<ZRMTimerHandle> ZRMLinuxQueue::postAfter(double delaySeconds, ZRMTask task) {
    const auto timer = std::make_shared<ZRMLinuxTimer>(entrance(), std::move(task), 0);
    if (delaySeconds > 0) {
        ZRMLinuxTimers::shared().add(timer, zrm_timePointAfter(delaySeconds));
    } else {
        timer->post();
    }
    return timer;
}

std::shared_ptr<ZRMTimerHandle> ZRMLinuxQueue::postEvery(double periodSeconds, ZRMTask task) {
    // Below a microsecond, and where the period is no number, the timer would never rest.
    const double period = periodSeconds >= 1e-6 ? periodSeconds : 1e-6;
    const auto timer = std::make_shared<ZRMLinuxTimer>(entrance(), std::move(task), period);
    ZRMLinuxTimers::shared().add(timer, zrm_timePointAfter(period));
    return timer;
}

bool ZRMLinuxQueue::isCurrent() const {
    return currentQueue == this;
}

std::function<void(ZRMTask)> ZRMLinuxQueue::entrance() {
    return [queue = shared_from_this()](ZRMTask task) { queue->post(std::move(task)); };
}

void ZRMLinuxQueue::run(const ZRMTask& task) const {
    const auto* const previous = std::exchange(currentQueue, this);
    try {
        task();
    } catch (const std::exception& exception) {
        zrm_writeToConsole("A task of queue " + label_ + " threw: " + exception.what() + "\n");
    } catch (...) {
        zrm_writeToConsole("A task of queue " + label_ + " threw\n");
    }
    currentQueue = previous;
}
