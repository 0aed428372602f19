// What is behind ZRMMobileService: the activation state and the way to the internal services.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/FileLogger/ZRMFileLogger.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/MemoryLogger/ZRMMemoryLogger.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLoggerCollection.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/ServerTime/ZRMServerTimeProvider.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMInternalServices.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Provider/ZRMSettingsProviding.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Updater/ZRMSettingsUpdater.h"
#include "ZRMMobileKit/ZRMMobileService.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

// The rules for handlers and threads are those of ZRMMobileService. Owned by shared_ptr, so that a
// handler may let go of the service while an operation of it runs.
class ZRMMobileServiceImpl : public std::enable_shared_from_this<ZRMMobileServiceImpl> {
  public:
    using CompletionHandler = ZRMMobileService::CompletionHandler;
    // Makes the services of one activation. The memory logger is null when the log is not uploaded.
    using MakeInternalServices = std::function<std::vector<std::shared_ptr<ZRMInternalService>>(
        const ZRMMobileServiceSettings& settings,
        const std::shared_ptr<ZRMServerTimeProvider>& serverTimeProvider,
        const std::shared_ptr<ZRMMemoryLogger>& memoryLogger)>;

    // The one service there is today: the adapter to the event core.
    static std::vector<std::shared_ptr<ZRMInternalService>> makeCloudKitAdapter(
        const ZRMMobileServiceSettings& settings,
        const std::shared_ptr<ZRMServerTimeProvider>& serverTimeProvider,
        const std::shared_ptr<ZRMMemoryLogger>& memoryLogger);

    // Adds the console logger, at the configuration's level, to the shared collection.
    ZRMMobileServiceImpl(std::shared_ptr<const ZRMPlatform> platform,
                         ZRMMobileServiceConfiguration configuration,
                         std::shared_ptr<ZRMSettingsProviding> settingsProvider,
                         MakeInternalServices makeInternalServices = makeCloudKitAdapter);

    void activateWithCompletionHandler(CompletionHandler completionHandler);
    void startWithCompletionHandler(CompletionHandler completionHandler);
    void analyzeEnvironmentWithCompletionHandler(CompletionHandler completionHandler);
    void sendLogin(const std::optional<std::string>& userId, ZRMLoginResult result,
                   const std::optional<std::string>& userName, CompletionHandler completionHandler);
    void sendLogout(CompletionHandler completionHandler);
    void sendUINavigationEvent(const std::optional<std::string>& navigationPoint,
                               CompletionHandler completionHandler);
    void sendSessionId(const std::optional<std::string>& sessionId,
                       CompletionHandler completionHandler);
    void sendGeoLocation(CompletionHandler completionHandler);

    [[nodiscard]] bool isActivated() const;
    [[nodiscard]] std::optional<std::string> deviceTag() const;
    [[nodiscard]] std::size_t pendingEventCount() const;
    [[nodiscard]] std::size_t unstoredEventCount() const;

  private:
    // The handlers that wait for the activation under way.
    using Activation = std::shared_ptr<std::vector<CompletionHandler>>;

    [[nodiscard]] std::optional<ZRMError> checkConfiguration() const;
    void prepareForStart(const ZRMSettingsProviding::Callback& continuation);
    void activateInternalServices(ZRMMobileServiceSettings settings, const Activation& activation);
    // Ends the activation: whoever waits for it gets the error.
    void finishActivation(const Activation& activation, const std::optional<ZRMError>& error);
    void performAfterActivation(const ZRMMobileServiceSettings& settings,
                                const std::shared_ptr<ZRMServerTimeProvider>& serverTimeProvider);
    // Downloads new settings where they are due; how that ends is only logged.
    void startSettingsUpdateWithDeviceTagProvider(
        const ZRMMobileServiceSettings& settings,
        std::shared_ptr<const ZRMDeviceTagProvider> deviceTagProvider,
        const std::string& serviceVersion,
        std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider);

    void processEvent(ZRMMobileServiceEventType event, const std::optional<std::string>& value,
                      const std::optional<std::string>& result,
                      const std::optional<std::string>& userId,
                      CompletionHandler completionHandler);

    void createConsoleLogger();
    void createFileLoggerIfNeeded(const ZRMLoggerSettings& settings);
    void resetFileLoggerIfNeeded(ZRMFileLogger& fileLogger, const ZRMLoggerSettings& settings);
    // Null when the settings do not have the log uploaded.
    [[nodiscard]] std::shared_ptr<ZRMMemoryLogger> createMemoryLoggerIfNeeded(
        const ZRMEventSettings& settings);

    // Null before an activation came that far.
    [[nodiscard]] std::shared_ptr<const ZRMInternalServices> internalServices() const;

    const std::shared_ptr<const ZRMPlatform> platform_;
    const ZRMMobileServiceConfiguration configuration_;
    const std::shared_ptr<ZRMSettingsProviding> settingsProvider_;
    const MakeInternalServices makeInternalServices_;
    const std::shared_ptr<ZRMLoggerCollection> loggerCollection_;

    mutable ZRMMutex mutex_;  // guards what follows; never held while anything else is called
    Activation activation_ ZRM_GUARDED_BY(mutex_);  // null while none is under way
    bool activated_ ZRM_GUARDED_BY(mutex_) = false;
    bool environmentAnalyzed_ ZRM_GUARDED_BY(mutex_) = false;
    std::shared_ptr<const ZRMInternalServices> internalServices_ ZRM_GUARDED_BY(mutex_);
    std::shared_ptr<ZRMSettingsUpdater> settingsUpdater_ ZRM_GUARDED_BY(mutex_);
};
