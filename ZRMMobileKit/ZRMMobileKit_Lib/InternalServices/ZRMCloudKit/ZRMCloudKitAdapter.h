// The internal service that reaches the event core.
#pragma once

#include <memory>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKit.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitConfiguration.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitProvider.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/MemoryLogger/ZRMMemoryLogger.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMOperationQueue.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/ServerTime/ZRMServerTimeProvider.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMCloudKit/ZRMMemoryLoggerMonitor.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMDeviceTagProvider.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMInternalService.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMMobileServiceSettings.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

// Turns the facade's calls into the event core's, as far as the settings allow. Handlers are called
// on the caller's thread, before the call returns: an event that was handed over counts as done.
class ZRMCloudKitAdapter final : public ZRMInternalService, public ZRMDeviceTagProvider {
  public:
    static constexpr std::int64_t kMemoryLimitBytes = 204800;
    static constexpr double kMemoryLoggerTimeIntervalSeconds = 20;
    // The environment variable that overrides the interval with a number of seconds above 0; a text
    // that is none leaves it.
    static constexpr const char* kMemoryLoggerTimeIntervalVariable = "kZRMMemoryLoggerTimeInterval";

    // On the installed platform.
    static std::shared_ptr<ZRMCloudKitAdapter> adapterWithMobileServiceSettings(
        const ZRMMobileServiceSettings& settings);

    ZRMCloudKitAdapter(std::shared_ptr<const ZRMPlatform> platform,
                       std::shared_ptr<ZRMCloudKitProvider> cloudKitProvider,
                       ZRMMobileServiceSettings settings);

    // These two before activation.
    void setServerTimeProvider(std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider);
    void observeMemoryLogger(std::shared_ptr<ZRMMemoryLogger> memoryLogger);

    // Makes and starts the event core, once; cannot fail.
    void activateWithCompletionHandler(const CompletionHandler& completionHandler) override;
    // True from the end of the activation to stopWithCompletionHandler().
    [[nodiscard]] bool isRunning() const override;
    // Asks for nine kinds of events, in a fixed order, each unless its event is disabled.
    void analyzeEnvironmentWithCompletionHandler(
        const CompletionHandler& completionHandler) override;
    // Error 12 when the settings switch the event off. Absent texts go as empty ones. A kind that
    // does not exist completes without an error and throws ZRMAssertionFailure.
    void sendEvent(ZRMMobileServiceEventType event, const std::optional<std::string>& value,
                   const std::optional<std::string>& result,
                   const std::optional<std::string>& userId,
                   const CompletionHandler& completionHandler) override;
    // Begins observing calls and uploading the memory log, each unless its event is disabled.
    void performAfterStartActionsWithCompletionHandler(
        const CompletionHandler& completionHandler) override;
    [[nodiscard]] std::size_t pendingEventCount() const override;
    [[nodiscard]] std::size_t unstoredEventCount() const override;
    void stopWithCompletionHandler(const CompletionHandler& completionHandler);

    [[nodiscard]] std::string deviceTag() const override;
    [[nodiscard]] std::string secureDeviceTag() const override;

  private:
    [[nodiscard]] ZRMCloudKitConfiguration makeCloudKitConfiguration() const;
    // Null before activation.
    [[nodiscard]] std::shared_ptr<ZRMCloudKit> cloudKit() const;
    void sendDeviceLocationIfNeeded(const std::shared_ptr<ZRMCloudKit>& cloudKit);
    void startMemoryLoggerMonitor(const std::shared_ptr<ZRMCloudKit>& cloudKit);
    [[nodiscard]] double memoryLoggerTimeInterval() const;

    const std::shared_ptr<const ZRMPlatform> platform_;
    const std::shared_ptr<ZRMCloudKitProvider> cloudKitProvider_;
    const ZRMMobileServiceSettings mobileServiceSettings_;
    ZRMOperationQueue queue_;  // one location request at a time

    mutable ZRMMutex mutex_;  // guards what follows; never held while the event core is called
    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider_ ZRM_GUARDED_BY(mutex_);
    std::shared_ptr<ZRMMemoryLogger> memoryLogger_ ZRM_GUARDED_BY(mutex_);
    std::shared_ptr<ZRMCloudKit> cloudKit_ ZRM_GUARDED_BY(mutex_);
    bool running_ ZRM_GUARDED_BY(mutex_) = false;
    std::shared_ptr<ZRMMemoryLoggerMonitor> memoryLoggerMonitor_ ZRM_GUARDED_BY(mutex_);
};
