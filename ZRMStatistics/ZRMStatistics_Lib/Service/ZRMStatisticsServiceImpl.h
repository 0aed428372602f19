// The statistics service: builds, stores, sends, and deletes what was answered.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMOperationQueue.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/ServerTime/ZRMServerTimeProvider.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"
#include "ZRMStatistics/ZRMStatistics_Lib/DataSource/ZRMStatisticsDataSource.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMStatisticsSaveGroup.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Sender/ZRMStatisticsSender.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsBodyMaker.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsOverflow.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsService.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsStorage.h"

// Owned by shared_ptr. Without a storage every event goes straight to the sender.
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
    [[nodiscard]] std::size_t pendingEventCount() const override;
    [[nodiscard]] std::size_t unstoredEventCount() const override;

    // Null while stopped, and without a storage.
    [[nodiscard]] std::shared_ptr<ZRMStatisticsDataSource> dataSource() const;
    [[nodiscard]] ZRMOperationQueue& queue() { return queue_; }
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

    void sendAllStatisticsFromStorage(const ZRMStatisticsDataSource& dataSource);
    void store(const ZRMSharedData& body, std::int16_t priority);
    void deleteOldStatistics(const std::vector<Data>& statistics);
    void deleteAllStatisticsFromStorageIfNeeded();
    void sendInsertedStatistics();

    void addStoreOperation(const std::shared_ptr<ZRMStatisticBaseOperation>& operation);
    void addBlock(std::function<void()> block);

    const std::shared_ptr<const ZRMPlatform> platform_;
    const std::shared_ptr<ZRMStatisticsStorage> storage_;
    const std::shared_ptr<ZRMStatisticsSender> sender_;
    const std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider_;
    const std::int64_t maxStorageSize_;
    const ZRMStatisticsBodyMaker bodyMaker_;
    ZRMOperationQueue queue_;
    std::atomic<bool> isDeletingAll_{false};
    // Events that no record stands for: on their way into the store, or uploaded without one.
    const std::shared_ptr<std::atomic<std::int64_t>> unstored_ =
        std::make_shared<std::atomic<std::int64_t>>(0);

    mutable std::mutex mutex_;  // guards these two; nothing is called with it held
    bool isStarted_ = false;
    std::shared_ptr<ZRMStatisticsDataSource> dataSource_;

    struct Insertion {
        const ZRMStatisticsDataSource* reporter;
        Data data;
    };
    std::mutex insertionsMutex_;
    std::vector<Insertion> insertions_;  // for which a block is on the queue

    std::mutex groupMutex_;                          // held while an operation enters the queue
    std::shared_ptr<ZRMStatisticsSaveGroup> group_;  // that the next store operation may join
};
