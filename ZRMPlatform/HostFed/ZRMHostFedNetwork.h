// The machine's networks, with what the host tells of them.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ZRMPlatform/HostFed/ZRMHostSignals.h"
#include "ZRMPlatform/Ports/ZRMHardware.h"
#include "ZRMPlatform/Ports/ZRMNetworkInterfaces.h"

class ZRMHostFedWifi final : public ZRMWifi {
  public:
    ZRMHostFedWifi(std::shared_ptr<ZRMWifi> machine, std::shared_ptr<ZRMHostSignals> signals)
        : machine_(std::move(machine)), signals_(std::move(signals)) {}

    [[nodiscard]] std::optional<ZRMWifiNetwork> currentNetwork() const override {
        auto word = signals_->wifi.word();
        return word ? *std::move(word) : machine_->currentNetwork();
    }

  private:
    const std::shared_ptr<ZRMWifi> machine_;
    const std::shared_ptr<ZRMHostSignals> signals_;
};

class ZRMHostFedCarriers final : public ZRMCarriers {
  public:
    ZRMHostFedCarriers(std::shared_ptr<ZRMCarriers> machine,
                       std::shared_ptr<ZRMHostSignals> signals)
        : machine_(std::move(machine)), signals_(std::move(signals)) {}

    [[nodiscard]] std::vector<ZRMCarrier> carriers() const override {
        auto word = signals_->carriers.word();
        return word ? *std::move(word) : machine_->carriers();
    }

  private:
    const std::shared_ptr<ZRMCarriers> machine_;
    const std::shared_ptr<ZRMHostSignals> signals_;
};

// The host's tunnels come after the machine's interfaces: a host sees tunnels that the machine does
// not list, but cannot tell that a listed one is not there.
class ZRMHostFedNetworkInterfaces final : public ZRMNetworkInterfaces {
  public:
    ZRMHostFedNetworkInterfaces(std::shared_ptr<ZRMNetworkInterfaces> machine,
                                std::shared_ptr<ZRMHostSignals> signals)
        : machine_(std::move(machine)), signals_(std::move(signals)) {}

    [[nodiscard]] std::optional<std::vector<ZRMInterfaceAddress>> addresses() const override {
        return machine_->addresses();
    }
    [[nodiscard]] std::optional<std::vector<std::string>> scopedInterfaceNames() const override;

  private:
    const std::shared_ptr<ZRMNetworkInterfaces> machine_;
    const std::shared_ptr<ZRMHostSignals> signals_;
};
