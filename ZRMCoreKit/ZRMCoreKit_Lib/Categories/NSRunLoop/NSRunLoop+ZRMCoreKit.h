// Private run loops that end by themselves.
#pragma once

#include <functional>
#include <memory>

#include "ZRMCoreKit/ZRMCoreKit_Lib/RunLoop/ZRMRunLoop.h"
#include "ZRMPlatform/Ports/ZRMExecutor.h"

// The classes of work queues, with the numbers of the original platform.
enum class ZRMQosClass : unsigned {
    UserInteractive = 0x21,
    UserInitiated = 0x19,
    Default = 0x15,
    Utility = 0x11,
    Background = 0x09,
};

// A number that is no quality of service gives the default class.
[[nodiscard]] ZRMQosClass zrm_qosClassForQualityOfService(ZRMQualityOfService qualityOfService);

// A new run loop that is driven as zrm_doLoopWithCompletionCallback tells. Never waits.
std::shared_ptr<ZRMRunLoop> zrm_startAsyncRunLoopForMode(ZRMExecutor& executor, ZRMRunLoopMode mode,
                                                         ZRMQualityOfService qualityOfService,
                                                         std::function<bool()> completionCallback);
std::shared_ptr<ZRMRunLoop> zrm_startAsyncRunLoopForMode(ZRMExecutor& executor, ZRMRunLoopMode mode,
                                                         ZRMQosClass qosClass,
                                                         std::function<bool()> completionCallback);

// Asks the callback on the loop, at once and then every half second; when it first answers true the
// loop ends. Throws ZRMInvalidArgument when the callback is missing. Never waits.
void zrm_doLoopWithCompletionCallback(const std::shared_ptr<ZRMRunLoop>& runLoop,
                                      std::function<bool()> callback);
