#include "ZRMPlatform/Simulated/ZRMSimulatedQueue.h"

#include <utility>

#include "ZRMPlatform/Simulated/ZRMSimulatedScheduler.h"

namespace {

class EndedTimer final : public ZRMTimerHandle {
  public:
    void cancel() override {}
};

}  // namespace

ZRMSimulatedQueue::ZRMSimulatedQueue(std::weak_ptr<ZRMSimulatedScheduler> scheduler,
                                     std::string label, Kind kind,
                                     ZRMQualityOfService qualityOfService,
                                     std::uint64_t threadIdentifier)
    : scheduler_(std::move(scheduler)),
      label_(std::move(label)),
      kind_(kind),
      qualityOfService_(qualityOfService),
      threadIdentifier_(threadIdentifier) {}

void ZRMSimulatedQueue::post(ZRMTask task) {
    if (const auto scheduler = scheduler_.lock()) {
        scheduler->post(shared_from_this(), std::move(task));
    }
}

std::shared_ptr<ZRMTimerHandle> ZRMSimulatedQueue::postAfter(double delaySeconds, ZRMTask task) {
    return postOnWallClock(delaySeconds, 0, std::move(task));
}

std::shared_ptr<ZRMTimerHandle> ZRMSimulatedQueue::postEvery(double periodSeconds, ZRMTask task) {
    return postOnWallClock(periodSeconds, periodSeconds, std::move(task));
}

std::shared_ptr<ZRMTimerHandle> ZRMSimulatedQueue::postOnWallClock(double delaySeconds,
                                                                   double periodSeconds,
                                                                   ZRMTask task) {
    const auto scheduler = scheduler_.lock();
    if (!scheduler || scheduler->isStopped()) {
        return std::make_shared<EndedTimer>();
    }
    const auto due = scheduler->time()->momentAfter(ZRMSimulatedMoment::Clock::Wall, delaySeconds);
    return scheduler->addTimer(shared_from_this(), due, periodSeconds, std::move(task));
}

bool ZRMSimulatedQueue::isCurrent() const {
    const auto scheduler = scheduler_.lock();
    return scheduler && scheduler->currentQueue() == this;
}
