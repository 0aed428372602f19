// The clock port over the device's simulated time.
#pragma once

#include <memory>
#include <optional>

#include "ZRMPlatform/Ports/ZRMClock.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedTime.h"

class ZRMSimulatedClock final : public ZRMClock {
  public:
    explicit ZRMSimulatedClock(std::shared_ptr<ZRMSimulatedTime> time);

    [[nodiscard]] ZRMDate now() const override;
    // Wall time less uptime, as kernels answer: it follows jumps of the wall clock.
    [[nodiscard]] std::optional<ZRMBootTime> bootTime() const override;
    [[nodiscard]] double uptimeSeconds() const override;

    // Whether the kernel tells the boot time; it does at first.
    void setBootTimeKnown(bool known) { bootTimeKnown_ = known; }

  private:
    std::shared_ptr<ZRMSimulatedTime> time_;
    bool bootTimeKnown_ = true;
};
