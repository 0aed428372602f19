// Calls, from what the host tells.
#pragma once

#include <memory>
#include <utility>

#include "ZRMPlatform/HostFed/ZRMHostSignals.h"
#include "ZRMPlatform/Ports/ZRMCalls.h"

class ZRMHostFedCalls final : public ZRMCalls {
  public:
    explicit ZRMHostFedCalls(std::shared_ptr<ZRMHostSignals> signals)
        : signals_(std::move(signals)) {}

    [[nodiscard]] std::vector<ZRMCall> calls() const override { return signals_->calls.calls(); }
    [[nodiscard]] std::shared_ptr<ZRMSubscription> observeCalls(std::shared_ptr<ZRMQueue> queue,
                                                                Callback callback) override {
        return signals_->calls.observe(std::move(queue), std::move(callback));
    }

  private:
    const std::shared_ptr<ZRMHostSignals> signals_;
};
