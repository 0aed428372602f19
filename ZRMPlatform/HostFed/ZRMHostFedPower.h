// The machine's power supply, with what the host tells of it.
#pragma once

#include <memory>
#include <utility>

#include "ZRMPlatform/HostFed/ZRMHostSignals.h"
#include "ZRMPlatform/Ports/ZRMHardware.h"

// Monitoring is the machine's: while it is off, the host's word on the battery is not known either.
class ZRMHostFedPower final : public ZRMPower {
  public:
    ZRMHostFedPower(std::shared_ptr<ZRMPower> machine, std::shared_ptr<ZRMHostSignals> signals)
        : machine_(std::move(machine)), signals_(std::move(signals)) {}

    [[nodiscard]] bool isBatteryMonitoringEnabled() const override {
        return machine_->isBatteryMonitoringEnabled();
    }
    void setBatteryMonitoringEnabled(bool enabled) override {
        machine_->setBatteryMonitoringEnabled(enabled);
    }
    [[nodiscard]] float batteryLevel() const override {
        const auto battery = word();
        return battery ? battery->level : machine_->batteryLevel();
    }
    [[nodiscard]] ZRMBatteryState batteryState() const override {
        const auto battery = word();
        return battery ? battery->state : machine_->batteryState();
    }
    [[nodiscard]] bool isLowPowerModeEnabled() const override {
        const auto isEnabled = signals_->lowPowerMode.word();
        return isEnabled ? *isEnabled : machine_->isLowPowerModeEnabled();
    }

  private:
    [[nodiscard]] std::optional<ZRMHostBattery> word() const {
        return isBatteryMonitoringEnabled() ? signals_->battery.word() : std::nullopt;
    }

    const std::shared_ptr<ZRMPower> machine_;
    const std::shared_ptr<ZRMHostSignals> signals_;
};
