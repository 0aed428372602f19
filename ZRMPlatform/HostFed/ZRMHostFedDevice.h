// The device, with what the host tells of it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "ZRMPlatform/HostFed/ZRMHostSignals.h"
#include "ZRMPlatform/Ports/ZRMDevice.h"

class ZRMHostFedDevice final : public ZRMDevice {
  public:
    ZRMHostFedDevice(std::shared_ptr<ZRMDevice> machine, std::shared_ptr<ZRMHostSignals> signals)
        : machine_(std::move(machine)), signals_(std::move(signals)) {}

    [[nodiscard]] std::optional<std::string> name() const override {
        auto word = signals_->deviceName.word();
        return word ? std::move(word) : machine_->name();
    }
    [[nodiscard]] std::optional<std::string> localizedModel() const override {
        auto word = signals_->localizedModel.word();
        return word ? std::move(word) : machine_->localizedModel();
    }
    [[nodiscard]] std::optional<std::string> identifierForVendor() const override {
        auto word = signals_->identifierForVendor.word();
        return word ? std::move(word) : machine_->identifierForVendor();
    }
    [[nodiscard]] std::string systemName() const override { return machine_->systemName(); }
    [[nodiscard]] std::optional<std::string> systemVersion() const override {
        return machine_->systemVersion();
    }
    [[nodiscard]] bool isMultitaskingSupported() const override {
        return machine_->isMultitaskingSupported();
    }
    [[nodiscard]] std::string hardwareIdentifier() const override {
        return machine_->hardwareIdentifier();
    }

  private:
    const std::shared_ptr<ZRMDevice> machine_;
    const std::shared_ptr<ZRMHostSignals> signals_;
};
