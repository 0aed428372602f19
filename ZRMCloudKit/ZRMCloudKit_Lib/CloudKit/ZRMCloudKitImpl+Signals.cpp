// The send operations that look at the device. All of them work on the core's queue.
#include <utility>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitErrors.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitImpl.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitPriorities.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMBlockOperation.h"

namespace {

// Loaded images are reported as a list and not judged here.
constexpr std::uint32_t kJailbreakDetectorMask = ZRMDeviceJailbreakDetectorFSPermissions |
                                                 ZRMDeviceJailbreakDetectorSysCalls |
                                                 ZRMDeviceJailbreakDetectorUrlSchemes;

ZRMError locationNotAvailable() {
    return ZRMError::withDescription(kZRMCloudKitErrorDomain, ZRMCloudKitErrorLocationNotAvailable,
                                     "The device's location is not available.");
}

}  // namespace

void ZRMCloudKitImpl::sendFromSource(const std::shared_ptr<ZRMEventSource>& source,
                                     const char* name) {
    if (!source) {
        logNotAvailable(name);
        return;
    }
    perform([source](ZRMCloudKitImpl& core) {
        core.send(kZRMEventPriorityUsual, [&source](const ZRMEventProvider& provider) {
            return source->eventWithProvider(provider);
        });
    });
}

void ZRMCloudKitImpl::sendFingerprint() {
    sendFromSource(detectors_.fingerprint, "The device fingerprint");
}

void ZRMCloudKitImpl::sendDeviceJailbreak() {
    if (!detectors_.makeJailbreakDetectors || !detectors_.dyldWatcher) {
        logNotAvailable("Jailbreak detection");
        return;
    }
    perform([](ZRMCloudKitImpl& core) {
        core.send(kZRMEventPriorityUsual, [&core](const ZRMEventProvider& provider) {
            const auto& detectors = core.detectors_;
            return provider.jailbreakEventWithDetectorCollection(
                detectors.makeJailbreakDetectors(kJailbreakDetectorMask), detectors.dyldWatcher);
        });
    });
}

void ZRMCloudKitImpl::sendApplicationSignature() {
    if (!detectors_.codeSignatureWatcher) {
        logNotAvailable("The application's code signature");
        return;
    }
    perform([](ZRMCloudKitImpl& core) {
        core.send(kZRMEventPriorityUsual, [&core](const ZRMEventProvider& provider) {
            return provider.applicationSignatureEventWithSignature(
                core.detectors_.codeSignatureWatcher->codeSignature());
        });
    });
}

void ZRMCloudKitImpl::sendLogEvent(const std::vector<std::string>& logs) {
    perform([logs](ZRMCloudKitImpl& core) {
        core.send(kZRMEventPriorityUsual, [&logs](const ZRMEventProvider& provider) {
            return provider.logDataEventWithLogs(logs);
        });
    });
}

void ZRMCloudKitImpl::sendConfigEvent() {
    perform([](ZRMCloudKitImpl& core) {
        core.send(kZRMEventPriorityUsual, [&core](const ZRMEventProvider& provider) {
            return provider.configEvent(core.configuration_.appliedSettings);
        });
    });
}

void ZRMCloudKitImpl::sendApplicationMd5() {
    sendApplicationMd5StatisticIfNeeded();
}

void ZRMCloudKitImpl::sendApplicationMd5StatisticIfNeeded() {
    if (!detectors_.bundleHasher) {
        logNotAvailable("The application bundle's digest");
        return;
    }
    perform([](ZRMCloudKitImpl& core) {
        const auto next = core.settings_->applicationMd5SendDate().addingSeconds(
            core.configuration_.applicationMd5StatisticInterval);
        if (next <= core.platform_->clock->now()) {
            core.sendApplicationMd5Statistic();
        }
    });
}

void ZRMCloudKitImpl::sendApplicationMd5Statistic() {
    const auto md5 = detectors_.bundleHasher->md5ForDirectoryAtPath(platform_->mainBundle->path());
    if (!md5) {
        zrm_logVerbose(this, "Application bundle md5 data is nil");
        return;
    }
    const bool sent = send(kZRMEventPriorityUsual, [&md5](const ZRMEventProvider& provider) {
        return provider.applicationInfoEventWithMd5(zrm_hexString(*md5));
    });
    if (sent) {
        settings_->execSaveTransaction([this](ZRMCloudKitSettings& settings) {
            settings.setApplicationMd5SendDate(platform_->clock->now());
        });
    }
}

void ZRMCloudKitImpl::sendTouchIdChanged() {
    sendTouchIdChangedIfNeeded();
}

void ZRMCloudKitImpl::sendTouchIdChangedIfNeeded() {
    if (!detectors_.touchId) {
        logNotAvailable("The biometric state");
        return;
    }
    perform([](ZRMCloudKitImpl& core) { core.sendTouchIdChange(); });
}

void ZRMCloudKitImpl::sendTouchIdChange() {
    const auto current = detectors_.touchId->currentTouchIdInfo();
    const auto stored = settings_->touchIdDomainState();
    if (stored == current && !configuration_.alwaysSendTouchIdChangedStatistic) {
        zrm_logVerbose(this, "TouchId has not been changed since last time.");
        return;
    }
    // A known state counts as changed even when it is sent unchanged.
    const bool changed = stored.has_value();
    const bool sent = send(kZRMEventPriorityUsual, [&](const ZRMEventProvider& provider) {
        return provider.touchIdChangedEventWithSupported(current.isSupported(), current.isEnabled(),
                                                         changed);
    });
    if (sent) {
        settings_->execSaveTransaction(
            [&current](ZRMCloudKitSettings& settings) { settings.setTouchIdDomainState(current); });
    }
}

void ZRMCloudKitImpl::sendScreenRecordingEventWithPolicy(
    const ZRMScreenRecordingEventPolicy& policy) {
    if (!detectors_.makeScreenRecordingDetector) {
        logNotAvailable("Screen recording detection");
        return;
    }
    perform([policy](ZRMCloudKitImpl& core) { core.startScreenRecordingDetection(policy); });
}

void ZRMCloudKitImpl::startScreenRecordingDetection(const ZRMScreenRecordingEventPolicy& policy) {
    const auto detector = detectors_.makeScreenRecordingDetector(policy);
    keep(&ZRMCloudKitImpl::screenRecordingDetector_, detector);
    detector->startDetection([weak = weak_from_this()](bool recording) {
        if (const auto core = weak.lock()) {
            core->send(kZRMEventPriorityUrgent, [recording](const ZRMEventProvider& provider) {
                return provider.screenRecordingEvent(recording);
            });
        }
    });
}

void ZRMCloudKitImpl::sendCallInfoEventWithPolicy(const ZRMCallInfoEventPolicy& policy) {
    if (!detectors_.callObserver) {
        logNotAvailable("Call observation");
        return;
    }
    perform([policy](ZRMCloudKitImpl& core) { core.startCallObservation(policy); });
}

void ZRMCloudKitImpl::startCallObservation(const ZRMCallInfoEventPolicy& policy) {
    const auto observer = detectors_.callObserver;
    keep(&ZRMCloudKitImpl::callObserver_, observer);
    observer->setDelegate(weak_from_this());
    observer->setEventPolicy(policy);
    observer->start();
    send(kZRMEventPriorityUrgent, [&observer](const ZRMEventProvider& provider) {
        return provider.callInfoEventWithInitialCalls(observer->calls());
    });
}

void ZRMCloudKitImpl::connectedCallChanged(const ZRMCallObserving& observer, const ZRMCall& call) {
    send(kZRMEventPriorityUrgent, [&](const ZRMEventProvider& provider) {
        return provider.callInfoEventWithChangedCall(call, observer.calls());
    });
}

void ZRMCloudKitImpl::connectedCallStillActive(const ZRMCallObserving& observer,
                                               const ZRMCall& call) {
    send(kZRMEventPriorityUrgent, [&](const ZRMEventProvider& provider) {
        return provider.callInfoEventWithActiveCall(call, observer.calls());
    });
}

void ZRMCloudKitImpl::sendVpnEvent() {
    if (!detectors_.makeVpnDetector) {
        logNotAvailable("VPN detection");
        return;
    }
    perform([](ZRMCloudKitImpl& core) { core.startVpnDetection(); });
}

void ZRMCloudKitImpl::startVpnDetection() {
    const auto detector = detectors_.makeVpnDetector();
    keep(&ZRMCloudKitImpl::vpnDetector_, detector);
    const auto sendState = [weak = weak_from_this()](bool connected) {
        if (const auto core = weak.lock()) {
            core->send(kZRMEventPriorityUsual, [connected](const ZRMEventProvider& provider) {
                return provider.vpnEvent(connected);
            });
        }
    };
    sendState(detector->isVpnConnected());
    detector->startDetection(sendState);
}

void ZRMCloudKitImpl::sendScreenshotEvent() {
    if (!detectors_.makeScreenshotDetector) {
        logNotAvailable("Screenshot detection");
        return;
    }
    perform([](ZRMCloudKitImpl& core) { core.startScreenshotDetection(); });
}

void ZRMCloudKitImpl::startScreenshotDetection() {
    const auto detector = detectors_.makeScreenshotDetector();
    keep(&ZRMCloudKitImpl::screenshotDetector_, detector);
    detector->startDetection([weak = weak_from_this()] {
        if (const auto core = weak.lock()) {
            core->send(kZRMEventPriorityUsual, [](const ZRMEventProvider& provider) {
                return provider.screenshotEvent(true);
            });
        }
    });
}

void ZRMCloudKitImpl::sendDeviceCoordinatesWithAccuracy(double accuracy,
                                                        double maxDetectionDuration,
                                                        CompletionHandler completionHandler) {
    if (!detectors_.makeDeviceLocator) {
        logNotAvailable("The device's location");
        queue_.addOperationWithBlock(
            [handler = std::move(completionHandler)] { handler(locationNotAvailable()); });
        return;
    }
    platform_->executor->mainQueue()->post([weak = weak_from_this(), accuracy, maxDetectionDuration,
                                            handler = std::move(completionHandler)]() mutable {
        if (const auto core = weak.lock()) {
            core->detectLocation(accuracy, maxDetectionDuration, std::move(handler));
        } else {
            handler(locationNotAvailable());
        }
    });
}

void ZRMCloudKitImpl::detectLocation(double accuracy, double maxDetectionDuration,
                                     CompletionHandler completionHandler) {
    std::shared_ptr<ZRMDeviceLocating> locator;
    {
        const ZRMLockGuard lock(mutex_);
        locator = deviceLocator_;
    }
    if (!locator) {
        // Later requests reuse it with this first accuracy and duration.
        locator = detectors_.makeDeviceLocator(accuracy, maxDetectionDuration);
        keep(&ZRMCloudKitImpl::deviceLocator_, locator);
    }
    const auto detection = locator->makeDetection();
    const auto followUp = ZRMBlockOperation::blockOperationWithBlock(
        [weak = weak_from_this(), detection, handler = std::move(completionHandler)] {
            if (const auto core = weak.lock()) {
                core->send(kZRMEventPriorityUser, [&detection](const ZRMEventProvider& provider) {
                    return detection->eventWithProvider(provider.commonParametersProvider());
                });
            }
            handler(detection->error());
        });
    followUp->addDependency(detection);
    queue_.addOperations({detection, followUp});
}
