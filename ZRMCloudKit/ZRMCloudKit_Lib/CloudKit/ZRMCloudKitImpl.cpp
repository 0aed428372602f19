#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitImpl.h"

#include <utility>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitPriorities.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Envelope/ZRMEnvironmentDataProvider.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/UIDevice/UIDevice+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Uuid/ZRMUuid.h"

namespace {

constexpr const char* kSettingsSubdirectory = "/ZRMCloudKit";
constexpr const char* kMobileUuidHeader = "Mobile-UUID";

ZRMStatisticsServiceMaker usualMaker(const std::shared_ptr<const ZRMPlatform>& platform) {
    return [platform](const std::string& url, const std::string& storagePath,
                      const std::shared_ptr<ZRMStatisticsCustomHeadersProvider>& customHeaders,
                      std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider) {
        if (!serverTimeProvider) {
            // Uploads always keep a server clock; without the core's it is one of their own.
            serverTimeProvider = std::make_shared<ZRMServerTimeProvider>(platform->clock);
        }
        return ZRMStatisticsServiceFactory::createServiceWithUrl(
            platform, url, storagePath, customHeaders, std::move(serverTimeProvider));
    };
}

}  // namespace

std::shared_ptr<ZRMCloudKitImpl> ZRMCloudKitImpl::cloudKitWithConfiguration(
    std::shared_ptr<const ZRMPlatform> platform, ZRMCloudKitConfiguration configuration,
    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider, ZRMCloudKitDetectors detectors,
    ZRMStatisticsServiceMaker makeStatisticsService) {
    return std::shared_ptr<ZRMCloudKitImpl>(new ZRMCloudKitImpl(
        std::move(platform), std::move(configuration), std::move(serverTimeProvider),
        std::move(detectors), std::move(makeStatisticsService)));
}

ZRMCloudKitImpl::ZRMCloudKitImpl(std::shared_ptr<const ZRMPlatform> platform,
                                 ZRMCloudKitConfiguration configuration,
                                 std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider,
                                 ZRMCloudKitDetectors detectors,
                                 ZRMStatisticsServiceMaker makeStatisticsService)
    : platform_(std::move(platform)),
      configuration_(std::move(configuration)),
      serverTimeProvider_(std::move(serverTimeProvider)),
      detectors_(std::move(detectors)),
      makeStatisticsService_(makeStatisticsService ? std::move(makeStatisticsService)
                                                   : usualMaker(platform_)),
      settings_(ZRMCloudKitSettings::settingsFromDirectory(
          platform_, configuration_.dataDirectory + kSettingsSubdirectory)),
      queue_(platform_->executor, zrm_queueNameForClass("ZRMCloudKitImpl")) {}

void ZRMCloudKitImpl::start() {
    auto started = std::make_shared<Started>();
    started->environmentData = createEnvironmentData();
    started->eventProvider = std::make_shared<ZRMEventProvider>(
        platform_, started->environmentData,
        std::make_shared<ZRMEventPermissionChecker>(platform_->locationAuthorization),
        serverTimeProvider_);
    if (detectors_.makeSecureDeviceTagProvider) {
        started->secureDeviceTagProvider = detectors_.makeSecureDeviceTagProvider(
            {configuration_.secureDeviceTagUrl, configuration_.jwsRootCertificate, settings_,
             started->environmentData, serverTimeProvider_});
        started->secureDeviceTagProvider->refreshIfNeeded();
    } else {
        logNotAvailable("The secure device tag");
    }
    started->statisticsService =
        makeStatisticsService_(configuration_.statisticsUrl, configuration_.dataDirectory,
                               shared_from_this(), serverTimeProvider_);
    {
        const ZRMLockGuard lock(mutex_);
        started_ = started;
    }
    // Its uploads may ask for the headers as soon as it runs.
    started->statisticsService->start();
}

std::shared_ptr<const ZRMCloudKitImpl::Started> ZRMCloudKitImpl::started() const {
    const ZRMLockGuard lock(mutex_);
    return started_;
}

std::shared_ptr<const ZRMEnvironmentDataImpl> ZRMCloudKitImpl::createEnvironmentData() {
    return ZRMEnvironmentDataProvider::providerWithClientId(
               platform_, configuration_.clientId, configuration_.execSessionId, provideDeviceTag(),
               configuration_.productName, configuration_.productVersion,
               settings_->installationDate())
        ->environmentData();
}

std::string ZRMCloudKitImpl::provideDeviceTag() {
    if (auto kept = zrm_deviceTag(*platform_->keychainItems)) {
        return *kept;
    }
    auto installationId = settings_->installationId();
    auto tag = installationId ? std::move(*installationId) : zrm_makeUuidText(*platform_->random);
    if (!zrm_setDeviceTag(*platform_->keychainItems, tag)) {
        zrm_logError(this, "Can't write device tag in keychain");
    }
    return tag;
}

std::shared_ptr<ZRMStatisticsService> ZRMCloudKitImpl::statisticsService() const {
    const auto core = started();
    return core ? core->statisticsService : nullptr;
}

std::string ZRMCloudKitImpl::deviceTag() const {
    const auto core = started();
    return core ? core->environmentData->deviceTag.value_or("") : "";
}

std::string ZRMCloudKitImpl::secureDeviceTag() const {
    const auto core = started();
    return core && core->secureDeviceTagProvider ? core->secureDeviceTagProvider->secureDeviceTag()
                                                 : "";
}

std::size_t ZRMCloudKitImpl::pendingEventCount() const {
    const auto core = started();
    return *worksUnderWay_ + (core ? core->statisticsService->pendingEventCount() : 0);
}

std::size_t ZRMCloudKitImpl::unstoredEventCount() const {
    const auto core = started();
    return *worksUnderWay_ + (core ? core->statisticsService->unstoredEventCount() : 0);
}

std::map<std::string, std::string> ZRMCloudKitImpl::customHeaders() const {
    return {{kMobileUuidHeader, secureDeviceTag()}};
}

bool ZRMCloudKitImpl::send(std::int16_t priority, const MakeEvent& makeEvent) {
    const auto core = started();
    if (!core) {
        return false;
    }
    core->statisticsService->send(*makeEvent(*core->eventProvider), priority);
    return true;
}

void ZRMCloudKitImpl::report(std::int16_t priority, const MakeEvent& makeEvent) {
    if (const auto core = started()) {
        core->statisticsService->send(makeEvent(*core->eventProvider), priority);
    }
}

void ZRMCloudKitImpl::perform(std::function<void(ZRMCloudKitImpl& core)> work) {
    ++*worksUnderWay_;
    queue_.addOperationWithBlock(
        [weak = weak_from_this(), work = std::move(work), underWay = worksUnderWay_] {
            if (const auto core = weak.lock()) {
                work(*core);
            }
            // Only now: what the work sent is counted by the service already.
            --*underWay;
        });
}

void ZRMCloudKitImpl::logNotAvailable(const char* name) const {
    zrm_logVerbose(this, std::string(name) + " is not available");
}

void ZRMCloudKitImpl::sendUserLogin(const std::string& userName, const std::string& result,
                                    const std::string& userId) {
    report(kZRMEventPriorityUser, [&](const ZRMEventProvider& provider) {
        return provider.userLoginEventWithUserName(userName, result, userId);
    });
}

void ZRMCloudKitImpl::sendUserLogout() {
    report(kZRMEventPriorityUser,
           [](const ZRMEventProvider& provider) { return provider.userLogoutEvent(); });
}

void ZRMCloudKitImpl::sendUINavigationPoint(const std::string& navigationPoint) {
    report(kZRMEventPriorityUsual, [&](const ZRMEventProvider& provider) {
        return provider.uiNavigationEventWithNavigationPoint(navigationPoint);
    });
}

void ZRMCloudKitImpl::sendSessionId(const std::string& identifier) {
    report(kZRMEventPriorityUsual, [&](const ZRMEventProvider& provider) {
        return provider.sessionIdEventWithIdentifier(identifier);
    });
}
