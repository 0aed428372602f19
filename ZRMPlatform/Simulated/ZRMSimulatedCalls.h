// The calls of a simulated device.
#pragma once

#include <memory>
#include <vector>

#include "ZRMPlatform/Ports/ZRMCalls.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedListeners.h"

// Kept over restarts of the process. One thread.
class ZRMSimulatedCallList {
  public:
    // A new call, or a new state of the one with the same UUID; one that has ended leaves the list.
    void update(const ZRMCall& call);
    [[nodiscard]] const std::vector<ZRMCall>& calls() const { return calls_; }
    [[nodiscard]] ZRMSimulatedListeners<ZRMCall>& listeners() { return listeners_; }

  private:
    std::vector<ZRMCall> calls_;
    ZRMSimulatedListeners<ZRMCall> listeners_;
};

class ZRMSimulatedCalls final : public ZRMCalls {
  public:
    ZRMSimulatedCalls(std::shared_ptr<ZRMSimulatedCallList> list,
                      std::shared_ptr<ZRMSimulatedProcess> process);
    [[nodiscard]] std::vector<ZRMCall> calls() const override { return list_->calls(); }
    [[nodiscard]] std::shared_ptr<ZRMSubscription> observeCalls(std::shared_ptr<ZRMQueue> queue,
                                                                Callback callback) override;

  private:
    std::shared_ptr<ZRMSimulatedCallList> list_;
    std::shared_ptr<ZRMSimulatedProcess> process_;
};
