// Batteries and the power profile, as the kernel shows them.
#pragma once

#include <atomic>
#include <string>

#include "ZRMPlatform/Ports/ZRMHardware.h"

// Counts the batteries that feed the machine, not those of mice and headsets. With several, the
// level is their mean, and the state is Charging when any of them is plugged in and not full.
// A battery that is plugged in and does not charge is Full at 100 percent, otherwise Charging.
// Low power is the platform profile "low-power".
class ZRMLinuxPower : public ZRMPower {
  public:
    explicit ZRMLinuxPower(std::string sysDirectory = "/sys");

    [[nodiscard]] bool isBatteryMonitoringEnabled() const override;
    void setBatteryMonitoringEnabled(bool enabled) override;
    [[nodiscard]] float batteryLevel() const override;
    [[nodiscard]] ZRMBatteryState batteryState() const override;
    [[nodiscard]] bool isLowPowerModeEnabled() const override;

  private:
    std::string sysDirectory_;
    std::atomic<bool> isMonitoring_ = false;
};
