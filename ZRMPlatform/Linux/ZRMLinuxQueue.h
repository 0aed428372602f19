// A queue over a lane.
#pragma once

#include <memory>

#include "ZRMPlatform/Linux/ZRMLinuxLanes.h"
#include "ZRMPlatform/Ports/ZRMQueue.h"

// A task that throws all the same is reported on the console and counts as done.
class ZRMLinuxQueue : public ZRMQueue, public std::enable_shared_from_this<ZRMLinuxQueue> {
  public:
    ZRMLinuxQueue(std::string label, ZRMLinuxLane lane);

    [[nodiscard]] const std::string& label() const override { return label_; }
    void post(ZRMTask task) override;
    std::shared_ptr<ZRMTimerHandle> postAfter(double delaySeconds, ZRMTask task) override;
    std::shared_ptr<ZRMTimerHandle> postEvery(double periodSeconds, ZRMTask task) override;
    [[nodiscard]] bool isCurrent() const override;

  private:
    // Takes tasks for as long as a timer needs it, whatever becomes of other references.
    [[nodiscard]] std::function<void(ZRMTask)> entrance();
    void run(const ZRMTask& task) const;

    const std::string label_;
    const ZRMLinuxLane lane_;
};
