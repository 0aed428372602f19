#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMMobileKit/ZRMMobileKitInfo.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMCloudKit/ZRMCloudKitAdapter.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileKitErrorFactory.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileServiceImpl.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileServiceValueChecker.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Certificate/ZRMCertificateProvider.h"

namespace {

constexpr const char* kOperationName = "activateWithCompletionHandler:";

void call(const ZRMMobileService::CompletionHandler& handler,
          const std::optional<ZRMError>& error) {
    if (handler) {
        handler(error);
    }
}

// The tags as the service itself tells them.
class ServiceTags final : public ZRMDeviceTagProvider {
  public:
    explicit ServiceTags(std::shared_ptr<const ZRMInternalServices> services)
        : services_(std::move(services)) {}

    [[nodiscard]] std::string deviceTag() const override {
        return services_->deviceTag().value_or("");
    }
    [[nodiscard]] std::string secureDeviceTag() const override {
        return services_->secureDeviceTag().value_or("");
    }

  private:
    const std::shared_ptr<const ZRMInternalServices> services_;
};

}  // namespace

std::vector<std::shared_ptr<ZRMInternalService>> ZRMMobileServiceImpl::makeCloudKitAdapter(
    const ZRMMobileServiceSettings& settings,
    const std::shared_ptr<ZRMServerTimeProvider>& serverTimeProvider,
    const std::shared_ptr<ZRMMemoryLogger>& memoryLogger) {
    auto adapter = ZRMCloudKitAdapter::adapterWithMobileServiceSettings(settings);
    adapter->setServerTimeProvider(serverTimeProvider);
    if (memoryLogger != nullptr) {
        adapter->observeMemoryLogger(memoryLogger);
    }
    return {std::move(adapter)};
}

ZRMMobileServiceImpl::ZRMMobileServiceImpl(std::shared_ptr<const ZRMPlatform> platform,
                                           ZRMMobileServiceConfiguration configuration,
                                           std::shared_ptr<ZRMSettingsProviding> settingsProvider,
                                           MakeInternalServices makeInternalServices)
    : platform_(std::move(platform)),
      configuration_(std::move(configuration)),
      settingsProvider_(std::move(settingsProvider)),
      makeInternalServices_(std::move(makeInternalServices)),
      loggerCollection_(ZRMLoggerCollection::sharedInstance()) {
    createConsoleLogger();
}

bool ZRMMobileServiceImpl::isActivated() const {
    const ZRMLockGuard lock(mutex_);
    return activated_;
}

std::shared_ptr<const ZRMInternalServices> ZRMMobileServiceImpl::internalServices() const {
    const ZRMLockGuard lock(mutex_);
    return internalServices_;
}

void ZRMMobileServiceImpl::activateWithCompletionHandler(CompletionHandler completionHandler) {
    if (isActivated()) {
        call(completionHandler, std::nullopt);
        return;
    }
    zrm_logVerbose(this, kOperationName);
    if (const auto error = checkConfiguration()) {
        call(completionHandler, error);
        return;
    }

    const auto activation = std::make_shared<std::vector<CompletionHandler>>();
    activation->push_back(std::move(completionHandler));
    bool finishedMeanwhile = false;
    {
        const ZRMLockGuard lock(mutex_);
        if (activation_ != nullptr) {
            activation_->push_back(std::move(activation->front()));
            return;
        }
        finishedMeanwhile = activated_;
        if (!finishedMeanwhile) {
            activation_ = activation;
        }
    }
    if (finishedMeanwhile) {
        call(activation->front(), std::nullopt);
        return;
    }
    prepareForStart([weakSelf = weak_from_this(), activation](
                        ZRMMobileServiceSettings settings, const std::optional<ZRMError>& error) {
        const auto self = weakSelf.lock();
        if (self == nullptr) {
            // Nobody else can reach the handlers any more.
            for (const auto& handler : *activation) {
                call(handler,
                     ZRMMobileKitErrorFactory::errorForCode(ZRMMobileKitErrorServiceNotReady));
            }
        } else if (error) {
            self->finishActivation(activation, error);
        } else {
            self->activateInternalServices(std::move(settings), activation);
        }
    });
}

std::optional<ZRMError> ZRMMobileServiceImpl::checkConfiguration() const {
    const auto& url = configuration_.statisticsUrl();
    if (url && !ZRMMobileServiceValueChecker::isValidHttpUrl(*url)) {
        return ZRMMobileKitErrorFactory::errorForCode(ZRMMobileKitErrorInvalidUrl);
    }
    return std::nullopt;
}

void ZRMMobileServiceImpl::prepareForStart(const ZRMSettingsProviding::Callback& continuation) {
    settingsProvider_->provideSettings(continuation);
}

void ZRMMobileServiceImpl::activateInternalServices(ZRMMobileServiceSettings settings,
                                                    const Activation& activation) {
    if (const auto& url = configuration_.statisticsUrl()) {
        settings.urls().setCustomStatisticsUrl(url);
    }
    createFileLoggerIfNeeded(settings.logger());
    const auto serverTimeProvider = std::make_shared<ZRMServerTimeProvider>(platform_->clock);
    const auto memoryLogger = createMemoryLoggerIfNeeded(settings.events());
    const auto services = std::make_shared<const ZRMInternalServices>(
        platform_->executor->mainQueue(),
        makeInternalServices_(settings, serverTimeProvider, memoryLogger));
    {
        const ZRMLockGuard lock(mutex_);
        internalServices_ = services;
    }
    services->activateWithCompletionHandler(
        [self = shared_from_this(), activation, settings,
         serverTimeProvider](const std::optional<ZRMError>& error) {
            self->finishActivation(activation, error);
            if (error) {
                zrm_logVerbose(self.get(), [&error] {
                    return std::string(kOperationName) +
                           " activation error: " + error->localizedDescription();
                });
            } else {
                self->performAfterActivation(settings, serverTimeProvider);
            }
        });
}

void ZRMMobileServiceImpl::finishActivation(const Activation& activation,
                                            const std::optional<ZRMError>& error) {
    {
        const ZRMLockGuard lock(mutex_);
        activation_ = nullptr;
        activated_ = !error.has_value();
    }
    for (const auto& handler : *activation) {
        call(handler, error);
    }
}

void ZRMMobileServiceImpl::performAfterActivation(
    const ZRMMobileServiceSettings& settings,
    const std::shared_ptr<ZRMServerTimeProvider>& serverTimeProvider) {
    zrm_logVerbose(this, std::string(kOperationName) + " activation successfuly complete");
    const auto services = internalServices();
    services->performAfterStartActions([weakSelf = weak_from_this()](const ZRMError& failure) {
        zrm_logError(weakSelf.lock().get(), failure.localizedDescription());
    });
    startSettingsUpdateWithDeviceTagProvider(settings, std::make_shared<ServiceTags>(services),
                                             kZRMMobileKitVersion, serverTimeProvider);
}

void ZRMMobileServiceImpl::startSettingsUpdateWithDeviceTagProvider(
    const ZRMMobileServiceSettings& settings,
    std::shared_ptr<const ZRMDeviceTagProvider> deviceTagProvider,
    const std::string& serviceVersion, std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider) {
    const auto updater = std::make_shared<ZRMSettingsUpdater>(
        platform_,
        ZRMSettingsUpdaterParameters{
            settings, zrm_mobileKitDefaults(*platform_->userDefaults), std::move(deviceTagProvider),
            serviceVersion, std::move(serverTimeProvider), ZRMSettingsStorage::defaultStorage(),
            zrm_jwsSignatureVerification(
                platform_, ZRMCertificateProvider::rootCertificate(*platform_->resourceBundles,
                                                                   *platform_->fileManager))});
    {
        const ZRMLockGuard lock(mutex_);
        settingsUpdater_ = updater;
    }
    updater->updateWithCompletionHandler(
        [weakSelf = weak_from_this()](const std::optional<ZRMError>& error) {
            const auto self = weakSelf.lock();
            if (error) {
                zrm_logError(self.get(),
                             "Settings update complete. Error: " + error->localizedDescription());
            } else {
                zrm_logVerbose(self.get(), "Settings update complete");
            }
        });
}

void ZRMMobileServiceImpl::startWithCompletionHandler(CompletionHandler completionHandler) {
    // Weak: this service keeps the handler as long as its activation is under way. Without an error
    // it is the service itself that calls, so it is there.
    activateWithCompletionHandler(
        [weakSelf = weak_from_this(),
         completionHandler = std::move(completionHandler)](const std::optional<ZRMError>& error) {
            if (error) {
                call(completionHandler, error);
            } else {
                weakSelf.lock()->analyzeEnvironmentWithCompletionHandler(completionHandler);
            }
        });
}

void ZRMMobileServiceImpl::analyzeEnvironmentWithCompletionHandler(
    CompletionHandler completionHandler) {
    const auto services = internalServices();
    if (services == nullptr || services->isEmpty()) {
        call(completionHandler,
             ZRMMobileKitErrorFactory::errorForCode(ZRMMobileKitErrorServiceNotReady));
        return;
    }
    bool analyzedBefore = false;
    {
        const ZRMLockGuard lock(mutex_);
        analyzedBefore = std::exchange(environmentAnalyzed_, true);
    }
    if (analyzedBefore) {
        call(completionHandler, std::nullopt);
        return;
    }
    services->analyzeEnvironmentWithCompletionHandler(
        [self = shared_from_this(),
         completionHandler = std::move(completionHandler)](const std::optional<ZRMError>& error) {
            if (error) {
                zrm_logError(self.get(), error->localizedDescription());
                const ZRMLockGuard lock(self->mutex_);
                self->environmentAnalyzed_ = false;
            }
            call(completionHandler, error);
        });
}
