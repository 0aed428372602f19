// A connected call that is being followed.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "ZRMPlatform/Ports/Values/ZRMCall.h"
#include "ZRMPlatform/Ports/ZRMQueue.h"

// Belongs to the call observer's queue.
struct ZRMCallObserverItem {
    std::optional<ZRMCall> call;  // as last heard of
    // The next look at whether the call is still active; absent when none is arranged.
    std::shared_ptr<ZRMTimerHandle> activeStateCheckBlock;
    std::uint64_t activeStateCheckCount = 0;  // checks that remain to be arranged

    [[nodiscard]] std::optional<std::string> callUUID() const {
        return call ? call->uuid : std::nullopt;
    }
};
