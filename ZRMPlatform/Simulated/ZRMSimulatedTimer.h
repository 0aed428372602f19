// A timer of the simulated scheduler.
#pragma once

#include <cstdint>
#include <memory>

#include "ZRMPlatform/Simulated/ZRMSimulatedScheduler.h"

class ZRMSimulatedTimer final : public ZRMTimerHandle,
                                public std::enable_shared_from_this<ZRMSimulatedTimer> {
  public:
    ZRMSimulatedTimer(std::weak_ptr<ZRMSimulatedScheduler> scheduler,
                      std::shared_ptr<ZRMSimulatedQueue> queue, ZRMSimulatedMoment due,
                      double periodSeconds, std::uint64_t sequence, ZRMTask task);

    void cancel() override;

    [[nodiscard]] const ZRMSimulatedMoment& due() const { return due_; }
    [[nodiscard]] std::uint64_t sequence() const { return sequence_; }
    [[nodiscard]] bool isRepeating() const { return period_ > 0; }

    // Posts the task, unless the one posted before still waits to run.
    void fire(ZRMSimulatedScheduler& scheduler);
    // Moves to the first period's end after now.
    void moveOn(const ZRMSimulatedTime& time);

  private:
    void run();

    std::weak_ptr<ZRMSimulatedScheduler> scheduler_;
    std::shared_ptr<ZRMSimulatedQueue> queue_;
    ZRMSimulatedMoment due_;
    std::int64_t period_;  // microseconds; 0 for a one-shot
    std::uint64_t sequence_;
    std::shared_ptr<const ZRMTask> task_;
    bool cancelled_ = false;
    bool posted_ = false;
};
