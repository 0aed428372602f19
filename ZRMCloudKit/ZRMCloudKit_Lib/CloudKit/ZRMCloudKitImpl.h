// The event core.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKit.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitConfiguration.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitSettings.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMCloudKitDetectors.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMEventProvider.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMOperationQueue.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsServiceFactory.h"

// Makes the statistics service, as ZRMStatisticsServiceFactory::createServiceWithUrl() does.
using ZRMStatisticsServiceMaker = std::function<std::shared_ptr<ZRMStatisticsService>(
    const std::string& url, const std::string& storagePath,
    const std::shared_ptr<ZRMStatisticsCustomHeadersProvider>& customHeadersProvider,
    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider)>;

// Makes events and hands them, with their priority, to the statistics service. What its queue and
// its detectors hold of it is weak: once it is gone, their work does nothing.
class ZRMCloudKitImpl final : public ZRMCloudKit,
                              public ZRMStatisticsCustomHeadersProvider,
                              public ZRMCallObserverDelegate,
                              public std::enable_shared_from_this<ZRMCloudKitImpl> {
  public:
    // Loads its settings from the directory "ZRMCloudKit" below the configuration's data directory,
    // which blocks on the disk. The server time provider may be absent.
    static std::shared_ptr<ZRMCloudKitImpl> cloudKitWithConfiguration(
        std::shared_ptr<const ZRMPlatform> platform, ZRMCloudKitConfiguration configuration,
        std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider,
        ZRMCloudKitDetectors detectors = {}, ZRMStatisticsServiceMaker makeStatisticsService = {});

    void start() override;
    [[nodiscard]] bool isStarted() const override { return started() != nullptr; }

    [[nodiscard]] std::string deviceTag() const override;
    [[nodiscard]] std::string secureDeviceTag() const override;
    [[nodiscard]] std::size_t pendingEventCount() const override;
    [[nodiscard]] std::size_t unstoredEventCount() const override;

    void sendUserLogin(const std::string& userName, const std::string& result,
                       const std::string& userId) override;
    void sendUserLogout() override;
    void sendUINavigationPoint(const std::string& navigationPoint) override;
    void sendSessionId(const std::string& identifier) override;
    void sendDeviceCoordinatesWithAccuracy(double accuracy, double maxDetectionDuration,
                                           CompletionHandler completionHandler) override;
    void sendApplicationMd5() override;
    void sendFingerprint() override;
    void sendDeviceJailbreak() override;
    void sendTouchIdChanged() override;
    void sendApplicationSignature() override;
    void sendLogEvent(const std::vector<std::string>& logs) override;
    void sendConfigEvent() override;
    void sendScreenRecordingEventWithPolicy(const ZRMScreenRecordingEventPolicy& policy) override;
    void sendCallInfoEventWithPolicy(const ZRMCallInfoEventPolicy& policy) override;
    void sendVpnEvent() override;
    void sendScreenshotEvent() override;

    void sendApplicationMd5StatisticIfNeeded();
    void sendTouchIdChangedIfNeeded();

    void connectedCallChanged(const ZRMCallObserving& observer, const ZRMCall& call) override;
    void connectedCallStillActive(const ZRMCallObserving& observer, const ZRMCall& call) override;

    // "Mobile-UUID" with the secure device tag, empty when there is none.
    [[nodiscard]] std::map<std::string, std::string> customHeaders() const override;

    [[nodiscard]] const std::shared_ptr<ZRMCloudKitSettings>& settings() const { return settings_; }
    [[nodiscard]] const ZRMOperationQueue& queue() const { return queue_; }
    // Null before start().
    [[nodiscard]] std::shared_ptr<ZRMStatisticsService> statisticsService() const;

  private:
    // What start() makes, whole or not at all.
    struct Started {
        std::shared_ptr<const ZRMEnvironmentDataImpl> environmentData;
        std::shared_ptr<const ZRMEventProvider> eventProvider;
        std::shared_ptr<ZRMSecureDeviceTagProviding> secureDeviceTagProvider;
        std::shared_ptr<ZRMStatisticsService> statisticsService;
    };
    using MakeEvent =
        std::function<std::shared_ptr<ZRMCloudKitEvent>(const ZRMEventProvider& provider)>;

    ZRMCloudKitImpl(std::shared_ptr<const ZRMPlatform> platform,
                    ZRMCloudKitConfiguration configuration,
                    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider,
                    ZRMCloudKitDetectors detectors,
                    ZRMStatisticsServiceMaker makeStatisticsService);

    [[nodiscard]] std::shared_ptr<const Started> started() const;
    [[nodiscard]] std::shared_ptr<const ZRMEnvironmentDataImpl> createEnvironmentData();
    [[nodiscard]] std::string provideDeviceTag();

    // Builds the event and queues it, on the calling thread. False before start().
    bool send(std::int16_t priority, const MakeEvent& makeEvent);
    // The same for what the host says, whose thread makes the event's object and no more.
    void report(std::int16_t priority, const MakeEvent& makeEvent);
    void sendFromSource(const std::shared_ptr<ZRMEventSource>& source, const char* name);
    // Runs the work on the core's queue, unless the core is gone by then.
    void perform(std::function<void(ZRMCloudKitImpl& core)> work);
    void logNotAvailable(const char* name) const;

    void detectLocation(double accuracy, double maxDetectionDuration,
                        CompletionHandler completionHandler);
    void startScreenRecordingDetection(const ZRMScreenRecordingEventPolicy& policy);
    void startCallObservation(const ZRMCallInfoEventPolicy& policy);
    void startVpnDetection();
    void startScreenshotDetection();
    void sendApplicationMd5Statistic();
    void sendTouchIdChange();

    template <class Detector>
    void keep(std::shared_ptr<Detector> ZRMCloudKitImpl::*kept,
              std::shared_ptr<Detector> detector) {
        const ZRMLockGuard lock(mutex_);
        (this->*kept).swap(detector);
    }

    const std::shared_ptr<const ZRMPlatform> platform_;
    const ZRMCloudKitConfiguration configuration_;
    const std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider_;
    const ZRMCloudKitDetectors detectors_;
    const ZRMStatisticsServiceMaker makeStatisticsService_;
    const std::shared_ptr<ZRMCloudKitSettings> settings_;
    // Work given to perform() that has not ended; it may outlive the core.
    const std::shared_ptr<std::atomic<std::size_t>> worksUnderWay_ =
        std::make_shared<std::atomic<std::size_t>>(0);
    ZRMOperationQueue queue_;

    mutable ZRMMutex mutex_;  // guards what follows; never held while calling out
    std::shared_ptr<const Started> started_ ZRM_GUARDED_BY(mutex_);
    std::shared_ptr<ZRMDeviceLocating> deviceLocator_ ZRM_GUARDED_BY(mutex_);
    std::shared_ptr<ZRMScreenRecordingDetecting> screenRecordingDetector_ ZRM_GUARDED_BY(mutex_);
    std::shared_ptr<ZRMCallObserving> callObserver_ ZRM_GUARDED_BY(mutex_);
    std::shared_ptr<ZRMVpnDetecting> vpnDetector_ ZRM_GUARDED_BY(mutex_);
    std::shared_ptr<ZRMScreenshotDetecting> screenshotDetector_ ZRM_GUARDED_BY(mutex_);
};
