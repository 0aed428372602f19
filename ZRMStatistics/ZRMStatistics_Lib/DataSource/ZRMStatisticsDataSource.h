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
    // Follows the changes of the store from now on. What is stored already is counted when
    // something is first asked, which takes a look at every record. A store that cannot be read is
    // logged then and counts as empty.
    static std::shared_ptr<ZRMStatisticsDataSource> create(
        std::shared_ptr<ZRMStatisticsContext> context);

    ~ZRMStatisticsDataSource() override;
    ZRMStatisticsDataSource(const ZRMStatisticsDataSource&) = delete;
    ZRMStatisticsDataSource& operator=(const ZRMStatisticsDataSource&) = delete;

    // Oldest first; the bytes stay in the store.
    [[nodiscard]] std::vector<ZRMStatisticEntity> fetchedStatisticsToSend() const;
    // Bytes of all records together.
    [[nodiscard]] std::int64_t getStorageSize() const;
    [[nodiscard]] std::int64_t count() const;

    // Kept weakly. Not from inside a notification.
    void addObserver(const std::shared_ptr<ZRMStatisticsDataSourceObserver>& observer);
    void removeObserver(const ZRMStatisticsDataSourceObserver* observer);

  private:
    explicit ZRMStatisticsDataSource(std::shared_ptr<ZRMStatisticsContext> context);

    void performFetch() const;
    void follow(const ZRMStatisticsChange& change, std::int64_t sign);
    void contextDidSaveChange(const ZRMStatisticsChange& change) override;

    std::shared_ptr<ZRMStatisticsContext> context_;
    ZRMObserversCollection<ZRMStatisticsDataSourceObserver> observers_;
    // Written inside the context's blocks.
    enum class State { NotFetched, Fetched, Failed };
    mutable std::atomic<State> state_{State::NotFetched};
    mutable std::atomic<std::int64_t> size_{0};
    mutable std::atomic<std::int64_t> count_{0};
    mutable std::uint64_t fetchedChanges_ = 0;  // the last change that the fetch saw
};
