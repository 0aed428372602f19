// The statistics service: builds, stores, sends, and deletes what was answered.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "ZRMCoreKit/ZRMCoreKit_Lib/ServerTime/ZRMServerTimeProvider.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"
#include "ZRMStatistics/ZRMStatistics_Lib/DataSource/ZRMStatisticsDataSource.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Sender/ZRMStatisticsSender.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsBodyMaker.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsOverflow.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsPipeline.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsService.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsStoreQueue.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsStorage.h"

// Owned by shared_ptr. Events that were taken are stored even when the service is stopped or
// dropped before. Without a storage every event goes straight to the sender.
class ZRMStatisticsServiceImpl final
    : public ZRMStatisticsService,
      public ZRMStatisticsDataSourceObserver,
      public ZRMStatisticsSenderObserver,
      public std::enable_shared_from_this<ZRMStatisticsServiceImpl> {
  public:
    // The storage may be absent. `maxStorageSize` is in bytes.
    ZRMStatisticsServiceImpl(std::shared_ptr<const ZRMPlatform> platform,
                             std::shared_ptr<ZRMStatisticsStorage> statisticsStorage,
                             std::shared_ptr<ZRMStatisticsSender> statisticsSender,
                             std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider,
                             std::int64_t maxStorageSize = kZRMStatisticsMaxStorageSize,
                             ZRMStatisticsBodyMaker bodyMaker = ZRMStatisticsBodyMaker());
    // Stops.
    ~ZRMStatisticsServiceImpl() override;
    ZRMStatisticsServiceImpl(const ZRMStatisticsServiceImpl&) = delete;
    ZRMStatisticsServiceImpl& operator=(const ZRMStatisticsServiceImpl&) = delete;

    void start() override;
    void stop() override;
    void send(const ZRMStatisticsEvent& event, std::int16_t priority) override;
    void send(std::shared_ptr<const ZRMStatisticsEvent> event, std::int16_t priority) override;
    [[nodiscard]] std::size_t pendingEventCount() const override;
    [[nodiscard]] std::size_t unstoredEventCount() const override;

    // Null while stopped, and without a storage.
    [[nodiscard]] std::shared_ptr<ZRMStatisticsDataSource> dataSource() const;
    [[nodiscard]] ZRMOperationQueue& queue() { return queue_->operations(); }
    [[nodiscard]] std::int64_t maxStorageSize() const { return maxStorageSize_; }

  private:
    using Data = std::shared_ptr<ZRMStatisticsData>;

    [[nodiscard]] bool isStarted() const;
    void dataSourceDidInsertStatisticsData(ZRMStatisticsDataSource& dataSource,
                                           const Data& data) override;
    void dataSourceDidDeleteStatisticsData(ZRMStatisticsDataSource& dataSource,
                                           const Data& data) override;
    void statisticsSenderDidSendData(ZRMStatisticsSender& sender, const Data& data) override;
    void statisticsSenderDidFailToSendData(ZRMStatisticsSender& sender, const Data& data,
                                           const ZRMError& error) override;

    // `now`, seconds since 1970, tells which have expired.
    void sendAllStatisticsFromStorage(const ZRMStatisticsDataSource& dataSource, double now);
    [[nodiscard]] std::shared_ptr<ZRMStatisticsPipeline> makePipeline();
    // Absent, with a line on the console, while stopped.
    struct Entrance {
        std::shared_ptr<ZRMStatisticsPipeline> pipeline;  // null without a storage
    };
    [[nodiscard]] std::optional<Entrance> entrance() const;
    void put(ZRMStatisticsPipeline& pipeline, std::shared_ptr<const ZRMStatisticsEvent> event,
             std::int16_t priority);
    void sendWithoutStorage(const ZRMStatisticsEvent& event);
    void deleteOldStatistics(const std::vector<Data>& statistics);
    void deleteAllStatisticsFromStorageIfNeeded();
    void sendInsertedStatistics();

    const std::shared_ptr<const ZRMPlatform> platform_;
    const std::shared_ptr<ZRMStatisticsStorage> storage_;
    const std::shared_ptr<ZRMStatisticsSender> sender_;
    const std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider_;
    const std::int64_t maxStorageSize_;
    const ZRMStatisticsBodyMaker bodyMaker_;
    const std::shared_ptr<ZRMStatisticsStoreQueue> queue_;
    std::atomic<bool> isDeletingAll_{false};
    // Events that no record stands for: on their way into the store, or uploaded without one.
    const std::shared_ptr<std::atomic<std::int64_t>> unstored_ =
        std::make_shared<std::atomic<std::int64_t>>(0);

    mutable ZRMMutex mutex_;  // nothing is called with it held
    bool isStarted_ ZRM_GUARDED_BY(mutex_) = false;
    std::shared_ptr<ZRMStatisticsDataSource> dataSource_ ZRM_GUARDED_BY(mutex_);
    // From the first start on, where there is a storage.
    std::shared_ptr<ZRMStatisticsPipeline> pipeline_ ZRM_GUARDED_BY(mutex_);

    struct Insertion {
        const ZRMStatisticsDataSource* reporter;
        Data data;
    };
    ZRMMutex insertionsMutex_;
    // For which a block is on the queue.
    std::vector<Insertion> insertions_ ZRM_GUARDED_BY(insertionsMutex_);
};
