#include "ZRMCoreKit/ZRMCoreKit_Lib/Reachability/ZRMReachabilityInspector.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"

namespace {

constexpr std::size_t kSocketAddressLength = 16;
constexpr std::uint8_t kInternetFamily = 2;

// The text, then an empty line.
void complain(ZRMConsoleLog& consoleLog, const std::string& text) {
    consoleLog.write(text + "\n");
    consoleLog.write("\n");
}

bool hasCStringForm(const std::string& text) {
    return text.find('\0') == std::string::npos && zrm_isValidUtf8(text);
}

std::shared_ptr<ZRMReachabilityInspector> inspectorWithTarget(
    const ZRMPlatform& platform, std::shared_ptr<ZRMReachabilityTarget> target) {
    if (!target) {
        complain(*platform.consoleLog, "Chould not create inspector");
    }
    return std::make_shared<ZRMReachabilityInspector>(std::move(target), platform.executor,
                                                      platform.consoleLog);
}

}  // namespace

void ZRMReachabilityCallback(std::uint32_t /*flags*/, ZRMReachabilityContext* info) {
    if (info == nullptr) {
        throw ZRMAssertionFailure("info was NULL in ReachabilityCallback");
    }
    auto* inspector = dynamic_cast<ZRMReachabilityInspector*>(info);
    if (inspector == nullptr) {
        throw ZRMAssertionFailure("info was wrong class in ReachabilityCallback");
    }
    inspector->notifyObservers();
}

std::shared_ptr<ZRMReachabilityInspector> ZRMReachabilityInspector::inspectorWithHostName(
    const std::shared_ptr<const ZRMPlatform>& platform, const std::string& hostName) {
    if (!hasCStringForm(hostName)) {
        complain(*platform->consoleLog, "hostName is incorrect");
        return inspectorWithTarget(*platform, nullptr);
    }
    return inspectorWithTarget(*platform, platform->reachabilityTargets->targetForHost(hostName));
}

std::shared_ptr<ZRMReachabilityInspector> ZRMReachabilityInspector::inspectorWithAddress(
    const std::shared_ptr<const ZRMPlatform>& platform, const ZRMSocketAddress& socketAddress) {
    return inspectorWithTarget(*platform,
                               platform->reachabilityTargets->targetForAddress(socketAddress));
}

std::shared_ptr<ZRMReachabilityInspector> ZRMReachabilityInspector::inspectorForInternetConnection(
    const std::shared_ptr<const ZRMPlatform>& platform) {
    ZRMSocketAddress anyAddress(kSocketAddressLength, 0);
    anyAddress[0] = kSocketAddressLength;
    anyAddress[1] = kInternetFamily;
    return inspectorWithAddress(platform, anyAddress);
}

ZRMReachabilityInspector::ZRMReachabilityInspector(
    std::shared_ptr<ZRMReachabilityTarget> reachabilityRef, std::shared_ptr<ZRMExecutor> executor,
    std::shared_ptr<ZRMConsoleLog> consoleLog)
    : reachabilityRef_(std::move(reachabilityRef)),
      executor_(std::move(executor)),
      consoleLog_(std::move(consoleLog)),
      observers_(consoleLog_) {}

ZRMReachabilityInspector::~ZRMReachabilityInspector() {
    stopNotifier();
}

ZRMNetworkStatus ZRMReachabilityInspector::networkStatusForFlags(std::uint32_t flags) {
    if ((flags & ZRMReachabilityReachable) == 0) {
        return ZRMNetworkStatus::NotReachable;
    }
    auto status = ZRMNetworkStatus::NotReachable;
    if ((flags & ZRMReachabilityConnectionRequired) == 0) {
        status = ZRMNetworkStatus::ReachableViaWiFi;
    }
    const bool connectsByItself =
        (flags & (ZRMReachabilityConnectionOnDemand | ZRMReachabilityConnectionOnTraffic)) != 0;
    if (connectsByItself && (flags & ZRMReachabilityInterventionRequired) == 0) {
        status = ZRMNetworkStatus::ReachableViaWiFi;
    }
    if ((flags & ZRMReachabilityIsCellular) != 0) {
        status = ZRMNetworkStatus::ReachableViaWWAN;
    }
    return status;
}

bool ZRMReachabilityInspector::connectionRequired() const {
    if (!reachabilityRef_) {
        complain(*consoleLog_, "connectionRequired called with NULL reachabilityRef");
        return false;
    }
    return (reachabilityRef_->flags().value_or(0) & ZRMReachabilityConnectionRequired) != 0;
}

ZRMNetworkStatus ZRMReachabilityInspector::currentReachabilityStatus() const {
    if (!reachabilityRef_) {
        complain(*consoleLog_, "currentNetworkStatus called with NULL SCNetworkReachabilityRef");
        return ZRMNetworkStatus::NotReachable;
    }
    return networkStatusForFlags(reachabilityRef_->flags().value_or(0));
}

void ZRMReachabilityInspector::addObserver(
    const std::shared_ptr<ZRMReachabilityInspectorObserver>& observer) {
    observers_.addObserver(observer);
}

void ZRMReachabilityInspector::removeObserver(const ZRMReachabilityInspectorObserver* observer) {
    observers_.removeObserver(observer);
}

bool ZRMReachabilityInspector::isNotifierStarted() const {
    const ZRMLockGuard lock(mutex_);
    return runLoop_ != nullptr;
}

bool ZRMReachabilityInspector::startNotifier() {
    return startNotifierWithRunLoop(nullptr);
}

bool ZRMReachabilityInspector::startNotifierWithRunLoop(std::shared_ptr<ZRMRunLoop> runLoop) {
    if (isNotifierStarted()) {
        complain(*consoleLog_,
                 "Unbalanced start notifier calls: Trying start notifier while it is active now");
    }
    if (!runLoop) {
        runLoop = ZRMRunLoop::currentRunLoop(executor_);
    }
    // The loop carries the callback, so what an observer schedules lands on the same loop.
    const bool isRegistered =
        reachabilityRef_ &&
        reachabilityRef_->setCallback([weak = weak_from_this(), runLoop](std::uint32_t flags) {
            if (const auto self = weak.lock()) {
                runLoop->perform([&] { ZRMReachabilityCallback(flags, self.get()); });
            }
        });
    if (!isRegistered || !reachabilityRef_->schedule(runLoop->queue())) {
        return false;
    }
    const ZRMLockGuard lock(mutex_);
    runLoop_ = std::move(runLoop);
    return true;
}

void ZRMReachabilityInspector::stopNotifier() {
    std::shared_ptr<ZRMRunLoop> runLoop;
    {
        const ZRMLockGuard lock(mutex_);
        runLoop.swap(runLoop_);
    }
    if (runLoop) {
        unschedule(*consoleLog_, reachabilityRef_.get(), runLoop.get());
    }
}

void ZRMReachabilityInspector::unschedule(ZRMConsoleLog& consoleLog, ZRMReachabilityTarget* target,
                                          const ZRMRunLoop* runLoop) {
    if (target == nullptr) {
        complain(consoleLog, "stopNotifier called with NULL SCNetworkReachabilityRef");
    }
    if (runLoop == nullptr) {
        complain(consoleLog, "stopNotifier called with runLoop set to nil");
    }
    if (target != nullptr && runLoop != nullptr) {
        target->unschedule(runLoop->queue());
    }
}

void ZRMReachabilityInspector::notifyObservers() {
    observers_.notifyWithBlock([this](ZRMReachabilityInspectorObserver& observer) {
        observer.inspector(*this, currentReachabilityStatus());
    });
}
