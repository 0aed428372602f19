// What the queue holds, in the order of its storing.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Observers/ZRMObserversCollection.h"
#include "ZRMStatistics/ZRMStatistics_Lib/DataSource/ZRMStatisticsDataSourceObserver.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsContext.h"

// May be used from any thread.
class ZRMStatisticsDataSource final : public ZRMStatisticsContextObserver {
  public:
    // Looks at the store as it is now and follows its changes from then on. A store that cannot be
    // read is logged and counts as empty.
    static std::shared_ptr<ZRMStatisticsDataSource> create(
        std::shared_ptr<ZRMStatisticsContext> context);

    ~ZRMStatisticsDataSource() override;
    ZRMStatisticsDataSource(const ZRMStatisticsDataSource&) = delete;
    ZRMStatisticsDataSource& operator=(const ZRMStatisticsDataSource&) = delete;

    // Oldest first; the bytes stay in the store.
    [[nodiscard]] std::vector<ZRMStatisticEntity> fetchedStatisticsToSend() const;
    // Bytes of all records together.
    [[nodiscard]] std::int64_t getStorageSize() const { return size_; }
    [[nodiscard]] std::int64_t count() const { return count_; }

    // Kept weakly. Not from inside a notification.
    void addObserver(const std::shared_ptr<ZRMStatisticsDataSourceObserver>& observer);
    void removeObserver(const ZRMStatisticsDataSourceObserver* observer);

  private:
    explicit ZRMStatisticsDataSource(std::shared_ptr<ZRMStatisticsContext> context);

    void performFetch();
    void contextDidSaveChange(const ZRMStatisticsChange& change) override;

    std::shared_ptr<ZRMStatisticsContext> context_;
    ZRMObserversCollection<ZRMStatisticsDataSourceObserver> observers_;
    std::atomic<bool> isFetched_{false};
    std::atomic<std::int64_t> size_{0};
    std::atomic<std::int64_t> count_{0};
};
