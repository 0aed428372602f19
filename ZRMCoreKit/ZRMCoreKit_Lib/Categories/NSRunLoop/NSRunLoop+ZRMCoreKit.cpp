#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSRunLoop/NSRunLoop+ZRMCoreKit.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"

namespace {

constexpr double kPollIntervalSeconds = 0.5;
constexpr const char* kRunLoopLabel = "ZRMRunLoop";

ZRMQualityOfService qualityOfServiceForClass(ZRMQosClass qosClass) {
    switch (qosClass) {
        case ZRMQosClass::UserInteractive:
            return ZRMQualityOfService::UserInteractive;
        case ZRMQosClass::UserInitiated:
            return ZRMQualityOfService::UserInitiated;
        case ZRMQosClass::Utility:
            return ZRMQualityOfService::Utility;
        case ZRMQosClass::Background:
            return ZRMQualityOfService::Background;
        case ZRMQosClass::Default:
            break;
    }
    return ZRMQualityOfService::Default;
}

using Callback = std::shared_ptr<const std::function<bool()>>;

void askAndGoOn(const std::shared_ptr<ZRMRunLoop>& runLoop, const Callback& callback) {
    bool isDone = false;
    runLoop->perform([&] { isDone = (*callback)(); });
    if (isDone) {
        runLoop->end();
        return;
    }
    runLoop->queue()->postAfter(kPollIntervalSeconds,
                                [runLoop, callback] { askAndGoOn(runLoop, callback); });
}

}  // namespace

ZRMQosClass zrm_qosClassForQualityOfService(ZRMQualityOfService qualityOfService) {
    switch (qualityOfService) {
        case ZRMQualityOfService::UserInteractive:
            return ZRMQosClass::UserInteractive;
        case ZRMQualityOfService::UserInitiated:
            return ZRMQosClass::UserInitiated;
        case ZRMQualityOfService::Utility:
            return ZRMQosClass::Utility;
        case ZRMQualityOfService::Background:
            return ZRMQosClass::Background;
        case ZRMQualityOfService::Default:
            break;
    }
    return ZRMQosClass::Default;
}

std::shared_ptr<ZRMRunLoop> zrm_startAsyncRunLoopForMode(ZRMExecutor& executor, ZRMRunLoopMode mode,
                                                         ZRMQualityOfService qualityOfService,
                                                         std::function<bool()> completionCallback) {
    return zrm_startAsyncRunLoopForMode(executor, mode,
                                        zrm_qosClassForQualityOfService(qualityOfService),
                                        std::move(completionCallback));
}

std::shared_ptr<ZRMRunLoop> zrm_startAsyncRunLoopForMode(ZRMExecutor& executor,
                                                         ZRMRunLoopMode /*mode*/,
                                                         ZRMQosClass qosClass,
                                                         std::function<bool()> completionCallback) {
    auto runLoop = std::make_shared<ZRMRunLoop>(
        executor.makeSerialQueue(kRunLoopLabel, qualityOfServiceForClass(qosClass)));
    zrm_doLoopWithCompletionCallback(runLoop, std::move(completionCallback));
    return runLoop;
}

void zrm_doLoopWithCompletionCallback(const std::shared_ptr<ZRMRunLoop>& runLoop,
                                      std::function<bool()> callback) {
    if (!callback) {
        throw ZRMInvalidArgument("Invalid parameter not satisfying: callback");
    }
    auto shared = std::make_shared<const std::function<bool()>>(std::move(callback));
    runLoop->queue()->post([runLoop, shared] { askAndGoOn(runLoop, shared); });
}
