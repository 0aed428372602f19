// A serial or concurrent queue of the simulated executor.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <utility>

#include "ZRMPlatform/Ports/ZRMExecutor.h"

class ZRMSimulatedScheduler;

// After its process ended, a queue takes posts and forgets them.
class ZRMSimulatedQueue final : public ZRMQueue,
                                public std::enable_shared_from_this<ZRMSimulatedQueue> {
  public:
    enum class Kind { Serial, Concurrent };

    ZRMSimulatedQueue(std::weak_ptr<ZRMSimulatedScheduler> scheduler, std::string label, Kind kind,
                      ZRMQualityOfService qualityOfService, std::uint64_t threadIdentifier);

    [[nodiscard]] const std::string& label() const override { return label_; }
    void post(ZRMTask task) override;
    std::shared_ptr<ZRMTimerHandle> postAfter(double delaySeconds, ZRMTask task) override;
    std::shared_ptr<ZRMTimerHandle> postEvery(double periodSeconds, ZRMTask task) override;
    [[nodiscard]] bool isCurrent() const override;

    [[nodiscard]] Kind kind() const { return kind_; }
    [[nodiscard]] ZRMQualityOfService qualityOfService() const { return qualityOfService_; }
    // What the executor calls the current thread while a task of this queue runs.
    [[nodiscard]] std::uint64_t threadIdentifier() const { return threadIdentifier_; }

  private:
    friend class ZRMSimulatedScheduler;

    std::shared_ptr<ZRMTimerHandle> postOnWallClock(double delaySeconds, double periodSeconds,
                                                    ZRMTask task);

    std::weak_ptr<ZRMSimulatedScheduler> scheduler_;
    std::string label_;
    Kind kind_;
    ZRMQualityOfService qualityOfService_;
    std::uint64_t threadIdentifier_;

    // The scheduler's: tasks of a serial queue behind the one that is offered or runs.
    std::deque<std::pair<std::uint64_t, ZRMTask>> waiting_;
    bool engaged_ = false;
};
