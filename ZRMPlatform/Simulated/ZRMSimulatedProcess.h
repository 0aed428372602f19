// One life of the simulated application: what ends when the process is killed.
#pragma once

#include <memory>

#include "ZRMPlatform/Simulated/ZRMSimulatedScheduler.h"

// Port bodies share it. Once it is dead they answer with errors and change nothing any more, so
// that code still on the call stack when a kill strikes cannot touch the device.
class ZRMSimulatedProcess {
  public:
    explicit ZRMSimulatedProcess(const std::shared_ptr<ZRMSimulatedTime>& time)
        : scheduler_(std::make_shared<ZRMSimulatedScheduler>(time)) {}

    [[nodiscard]] bool isAlive() const { return !scheduler_->isStopped(); }
    void kill() { scheduler_->stop(); }

    [[nodiscard]] const std::shared_ptr<ZRMSimulatedScheduler>& scheduler() const {
        return scheduler_;
    }

  private:
    std::shared_ptr<ZRMSimulatedScheduler> scheduler_;
};
