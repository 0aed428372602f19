// The telephone and internet calls under way on the device.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "ZRMPlatform/Ports/Values/ZRMCall.h"
#include "ZRMPlatform/Ports/ZRMQueue.h"
#include "ZRMPlatform/Ports/ZRMSubscription.h"

// May be used from any thread; never blocks.
class ZRMCalls {
  public:
    using Callback = std::function<void(const ZRMCall& call)>;

    virtual ~ZRMCalls() = default;
    // Those that have not ended, in the order in which they began.
    [[nodiscard]] virtual std::vector<ZRMCall> calls() const = 0;
    // Tells every later update of a call, in order, on that queue; the last one of a call says that
    // it has ended.
    [[nodiscard]] virtual std::shared_ptr<ZRMSubscription> observeCalls(
        std::shared_ptr<ZRMQueue> queue, Callback callback) = 0;
};
