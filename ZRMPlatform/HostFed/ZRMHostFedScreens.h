// The machine's displays, with what the host tells of them.
#pragma once

#include <memory>
#include <utility>

#include "ZRMPlatform/HostFed/ZRMHostSignals.h"
#include "ZRMPlatform/Ports/ZRMScreens.h"

class ZRMHostFedScreens final : public ZRMScreens {
  public:
    ZRMHostFedScreens(std::shared_ptr<ZRMScreens> machine, std::shared_ptr<ZRMHostSignals> signals)
        : machine_(std::move(machine)), signals_(std::move(signals)) {}

    [[nodiscard]] std::vector<ZRMScreen> screens() const override {
        return signals_->screens.joinedTo(machine_->screens());
    }

  private:
    const std::shared_ptr<ZRMScreens> machine_;
    const std::shared_ptr<ZRMHostSignals> signals_;
};
