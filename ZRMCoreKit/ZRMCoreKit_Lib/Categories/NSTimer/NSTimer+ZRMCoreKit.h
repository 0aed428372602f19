// Timers made from a callback.
#pragma once

#include <functional>
#include <memory>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Timer/ZRMTimer.h"
#include "ZRMPlatform/Ports/ZRMExecutor.h"

// The timer's only userInfo key; the value is the holder of the callback.
inline constexpr const char* kZRMTimerBlockHolderKey = "ZRMTimerBlockHolderKey";

// A timer on the current run loop, running. Throws ZRMInvalidArgument when the callback is empty.
std::shared_ptr<ZRMTimer> zrm_scheduledTimerWithTimeInterval(
    const std::shared_ptr<ZRMExecutor>& executor, double intervalSeconds, bool repeats,
    std::function<void()> callback);
