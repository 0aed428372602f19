// Follows the calls under way.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Policies/ZRMCallInfoEventPolicy.h"
#include "ZRMPlatform/Ports/Values/ZRMCall.h"

class ZRMCallObserving;

// Told on the observer's own queue.
class ZRMCallObserverDelegate {
  public:
    virtual ~ZRMCallObserverDelegate() = default;
    // A connected call was first seen, or is another than before.
    virtual void connectedCallChanged(const ZRMCallObserving& observer, const ZRMCall& call) = 0;
    // A connected call had not ended when it was looked at again.
    virtual void connectedCallStillActive(const ZRMCallObserving& observer,
                                          const ZRMCall& call) = 0;
};

// May be used from any thread.
class ZRMCallObserving {
  public:
    virtual ~ZRMCallObserving() = default;
    // Kept weakly.
    virtual void setDelegate(std::weak_ptr<ZRMCallObserverDelegate> delegate) = 0;
    // None means the default policy.
    virtual void setEventPolicy(std::optional<ZRMCallInfoEventPolicy> policy) = 0;
    // Starting again changes nothing.
    virtual void start() = 0;
    // The current calls; none before start().
    [[nodiscard]] virtual std::vector<ZRMCall> calls() const = 0;
};
