// The calls that the host has told of.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "ZRMPlatform/HostFed/ZRMHostObservers.h"
#include "ZRMPlatform/Ports/ZRMCalls.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

// May be used from any thread.
class ZRMHostCalls {
  public:
    // So many calls may be under way: a host that begins calls and never ends them stops here.
    static constexpr std::size_t kMostCalls = 1000;

    // A new call, or a new state of the one with the same UUID; one that has ended leaves the list.
    // Observers hear of every update, in the order in which the list changed. False, and nothing
    // happens, where the call would be one too many.
    bool update(const ZRMCall& call);
    [[nodiscard]] std::vector<ZRMCall> calls() const;
    [[nodiscard]] std::shared_ptr<ZRMSubscription> observe(std::shared_ptr<ZRMQueue> queue,
                                                           ZRMCalls::Callback callback);

  private:
    bool apply(const ZRMCall& call) ZRM_REQUIRES(mutex_);

    mutable ZRMMutex mutex_;
    std::vector<ZRMCall> calls_ ZRM_GUARDED_BY(mutex_);
    ZRMHostObservers<ZRMCall> observers_ ZRM_GUARDED_BY(mutex_);
};
