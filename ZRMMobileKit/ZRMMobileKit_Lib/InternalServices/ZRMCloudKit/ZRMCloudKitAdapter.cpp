#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMCloudKit/ZRMCloudKitAdapter.h"

#include <charconv>
#include <cmath>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDate/NSDate+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"
#include "ZRMMobileKit/ZRMMobileKitInfo.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Categories/NSUserDefaults/NSUserDefaults+ZRMMobileKit.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMCloudKit/Operations/ZRMCloudKitSendLocationOperation.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMCloudKit/ZRMExecSessionIdProvider.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileKitErrorFactory.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Certificate/ZRMCertificateProvider.h"

std::shared_ptr<ZRMCloudKitAdapter> ZRMCloudKitAdapter::adapterWithMobileServiceSettings(
    const ZRMMobileServiceSettings& settings) {
    return std::make_shared<ZRMCloudKitAdapter>(ZRMPlatform::current(),
                                                ZRMCloudKitProvider::sharedInstance(), settings);
}

ZRMCloudKitAdapter::ZRMCloudKitAdapter(std::shared_ptr<const ZRMPlatform> platform,
                                       std::shared_ptr<ZRMCloudKitProvider> cloudKitProvider,
                                       ZRMMobileServiceSettings settings)
    : platform_(std::move(platform)),
      cloudKitProvider_(std::move(cloudKitProvider)),
      mobileServiceSettings_(std::move(settings)),
      queue_(platform_->executor, zrm_queueNameForClass("ZRMCloudKitAdapter"), 1) {}

void ZRMCloudKitAdapter::setServerTimeProvider(
    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider) {
    const ZRMLockGuard lock(mutex_);
    serverTimeProvider_ = std::move(serverTimeProvider);
}

void ZRMCloudKitAdapter::observeMemoryLogger(std::shared_ptr<ZRMMemoryLogger> memoryLogger) {
    const ZRMLockGuard lock(mutex_);
    memoryLogger_ = std::move(memoryLogger);
}

void ZRMCloudKitAdapter::activateWithCompletionHandler(const CompletionHandler& completionHandler) {
    if (!isRunning()) {
        std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider;
        {
            const ZRMLockGuard lock(mutex_);
            serverTimeProvider = serverTimeProvider_;
        }
        const auto cloudKit = cloudKitProvider_->cloudKitWithConfiguration(
            makeCloudKitConfiguration(), serverTimeProvider);
        if (!cloudKit->isStarted()) {  // else another service of this process has
            cloudKit->start();
        }

        const ZRMLockGuard lock(mutex_);
        cloudKit_ = cloudKit;
        running_ = true;
    }
    completionHandler(std::nullopt);
}

ZRMCloudKitConfiguration ZRMCloudKitAdapter::makeCloudKitConfiguration() const {
    const auto& settings = mobileServiceSettings_;
    ZRMExecSessionIdProvider execSessionIdProvider(settings.timeIntervals().execSessionTimeout(),
                                                   zrm_mobileKitDefaults(*platform_->userDefaults),
                                                   platform_->clock, platform_->random);

    auto configuration = ZRMCloudKitConfiguration::configuration(*platform_->directories);
    configuration.appliedSettings = ZRMMobileServiceSettings::jsonFromSettings(settings);
    configuration.statisticsUrl = settings.urls().statisticsUrl();
    configuration.secureDeviceTagUrl = settings.urls().secureDeviceTagUrl();
    // A bundle without an identifier has no directory of its own; the shared one then serves.
    configuration.dataDirectory =
        zrm_currentApplicationSupportDirectory(*platform_->directories, *platform_->mainBundle)
            .value_or(zrm_applicationSupportDirectory(*platform_->directories));
    configuration.clientId = settings.customizedClientId();
    configuration.alwaysSendTouchIdChangedStatistic = false;
    configuration.applicationMd5StatisticInterval = zrm_secondsPerDay();
    configuration.execSessionId = execSessionIdProvider.execSessionId();
    configuration.productName = kZRMMobileKitProductName;
    configuration.productVersion = kZRMMobileKitVersion;
    configuration.jwsRootCertificate = ZRMCertificateProvider::rootCertificate(
        *platform_->resourceBundles, *platform_->fileManager);
    return configuration;
}

bool ZRMCloudKitAdapter::isRunning() const {
    const ZRMLockGuard lock(mutex_);
    return running_;
}

std::shared_ptr<ZRMCloudKit> ZRMCloudKitAdapter::cloudKit() const {
    const ZRMLockGuard lock(mutex_);
    return cloudKit_;
}

void ZRMCloudKitAdapter::analyzeEnvironmentWithCompletionHandler(
    const CompletionHandler& completionHandler) {
    if (const auto core = cloudKit()) {
        const auto& events = mobileServiceSettings_.events();
        if (!events.isApplicationInfoEventDisabled()) {
            core->sendApplicationMd5();
        }
        if (!events.isFingerprintEventDisabled()) {
            core->sendFingerprint();
        }
        if (!events.isTouchIdChangedEventDisabled()) {
            core->sendTouchIdChanged();
        }
        if (!events.isDeviceJailbreakEventDisabled()) {
            core->sendDeviceJailbreak();
        }
        if (!events.isApplicationSignatureEventDisabled()) {
            core->sendApplicationSignature();
        }
        if (!events.isConfigEventDisabled()) {
            core->sendConfigEvent();
        }
        if (!events.isScreenRecordingEventDisabled()) {
            core->sendScreenRecordingEventWithPolicy(events.screenRecordingEventPolicy().value_or(
                ZRMScreenRecordingEventPolicy::defaultPolicy()));
        }
        if (!events.isVpnEventDisabled()) {
            core->sendVpnEvent();
        }
        if (!events.isScreenshotEventDisabled()) {
            core->sendScreenshotEvent();
        }
    }
    completionHandler(std::nullopt);
}

void ZRMCloudKitAdapter::performAfterStartActionsWithCompletionHandler(
    const CompletionHandler& completionHandler) {
    if (const auto core = cloudKit()) {
        const auto& events = mobileServiceSettings_.events();
        if (!events.isCallInfoEventDisabled()) {
            core->sendCallInfoEventWithPolicy(
                events.callInfoEventPolicy().value_or(ZRMCallInfoEventPolicy::defaultPolicy()));
        }
        if (!events.isLogDataEventDisabled()) {
            startMemoryLoggerMonitor(core);
        }
    }
    completionHandler(std::nullopt);
}

void ZRMCloudKitAdapter::stopWithCompletionHandler(const CompletionHandler& completionHandler) {
    {
        const ZRMLockGuard lock(mutex_);
        running_ = false;
    }
    completionHandler(std::nullopt);
}

std::size_t ZRMCloudKitAdapter::pendingEventCount() const {
    const auto core = cloudKit();
    return queue_.operationCount() + (core ? core->pendingEventCount() : 0);
}

std::size_t ZRMCloudKitAdapter::unstoredEventCount() const {
    const auto core = cloudKit();
    return core ? core->unstoredEventCount() : 0;
}

std::string ZRMCloudKitAdapter::deviceTag() const {
    const auto core = cloudKit();
    return core ? core->deviceTag() : std::string();
}

std::string ZRMCloudKitAdapter::secureDeviceTag() const {
    const auto core = cloudKit();
    return core ? core->secureDeviceTag() : std::string();
}

void ZRMCloudKitAdapter::startMemoryLoggerMonitor(const std::shared_ptr<ZRMCloudKit>& cloudKit) {
    std::shared_ptr<ZRMMemoryLoggerMonitor> monitor;
    {
        const ZRMLockGuard lock(mutex_);
        if (memoryLogger_ == nullptr) {
            return;
        }
        monitor = ZRMMemoryLoggerMonitor::initWithMemoryLoggger(
            memoryLogger_, kMemoryLimitBytes, memoryLoggerTimeInterval(), platform_->executor);
        memoryLoggerMonitor_ = monitor;
    }
    monitor->startWithNotifyBlock(
        [cloudKit](const std::vector<std::string>& logs) { cloudKit->sendLogEvent(logs); });
}

double ZRMCloudKitAdapter::memoryLoggerTimeInterval() const {
    const auto text = platform_->processEnvironment->variable(kMemoryLoggerTimeIntervalVariable);
    double seconds = 0;
    if (text) {
        std::from_chars(text->data(), text->data() + text->size(), seconds);
    }
    return std::isfinite(seconds) && seconds > 0 ? seconds : kMemoryLoggerTimeIntervalSeconds;
}
