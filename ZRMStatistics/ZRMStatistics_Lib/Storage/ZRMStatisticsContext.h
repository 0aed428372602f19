// The one way to the queue's records.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Observers/ZRMObserversCollection.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMPersistentStoreCoordinator.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticEntity.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsTable.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStoredStatisticsData.h"

enum class ZRMStatisticsChangeKind : int { Insert = 1, Delete = 2, Update = 4 };

struct ZRMStatisticsChange {
    ZRMStatisticsChangeKind kind;
    std::shared_ptr<ZRMStatisticsData> data;  // the record's bytes; still readable after a deletion
    std::uint64_t number = 0;  // of the changes of this context that were saved, from 1
};

class ZRMStatisticsContextObserver {
  public:
    virtual ~ZRMStatisticsContextObserver() = default;
    // After a save, once for each change of it in the order of the changes, inside the block that
    // saved.
    virtual void contextDidSaveChange(const ZRMStatisticsChange& change) = 0;
};

// Every operation but the first four is called inside a block. Changes are one transaction from the
// first change to save() or rollback(); fetches see the changes that are not saved yet.
class ZRMStatisticsContext final : public std::enable_shared_from_this<ZRMStatisticsContext> {
  public:
    // `coordinator` must hold the queue's table; the error says what is wrong with it.
    static ZRMResult<std::shared_ptr<ZRMStatisticsContext>> create(
        std::shared_ptr<const ZRMPlatform> platform,
        std::shared_ptr<ZRMPersistentStoreCoordinator> coordinator);

    [[nodiscard]] const std::shared_ptr<const ZRMPlatform>& platform() const { return platform_; }

    // Runs the block on the calling thread, alone among all threads; blocks may nest.
    void performBlockAndWait(const std::function<void()>& block);

    void addObserver(const std::shared_ptr<ZRMStatisticsContextObserver>& observer);
    void removeObserver(const ZRMStatisticsContextObserver* observer);

    // Gives the record back with its number, and with bytes that live in the store. Those of the
    // last records inserted stay in memory as well: they are about to be sent.
    ZRMResult<ZRMStatisticEntity> insertObject(const ZRMStatisticEntity& statistic);
    std::optional<ZRMError> updateObject(const ZRMStatisticEntity& statistic);
    // The bytes stay readable for whoever holds them, unless their upload was answered.
    std::optional<ZRMError> deleteObject(const ZRMStatisticEntity& statistic);
    ZRMResult<std::vector<ZRMStatisticEntity>> executeFetchRequest(
        const ZRMStatisticFetchRequest& request);
    // The record that the data stands for; absent when it stands for none, or for one that is gone.
    ZRMResult<std::optional<ZRMStatisticEntity>> statisticOf(const ZRMStatisticsData& data);
    ZRMResult<ZRMStatisticsTable::Totals> totals();
    // The number of the last change saved, whether or not the observers know of it yet.
    [[nodiscard]] std::uint64_t savedChanges();

    // On success the changes are on stable storage and the observers know of them; on an error
    // nothing is changed.
    std::optional<ZRMError> save();
    void rollback();

  private:
    ZRMStatisticsContext(std::shared_ptr<const ZRMPlatform> platform,
                         std::shared_ptr<ZRMPersistentStoreCoordinator> coordinator);

    ZRMError failure(const SQLite::Exception& exception) const;
    void beginChanges() ZRM_REQUIRES(mutex_);
    void keepInMemoryForAWhile(const std::shared_ptr<ZRMStatisticsData>& inserted)
        ZRM_REQUIRES(mutex_);
    ZRMSharedData readBytes(std::int64_t record);
    std::shared_ptr<ZRMStatisticsData> dataOf(const ZRMStatisticsTable::Row& row);
    ZRMStatisticEntity entityOf(const ZRMStatisticsTable::Row& row);

    std::shared_ptr<const ZRMPlatform> platform_;
    std::shared_ptr<ZRMPersistentStoreCoordinator> coordinator_;
    ZRMObserversCollection<ZRMStatisticsContextObserver> observers_;
    std::shared_ptr<ZRMStoredStatisticsData::Source> dataSource_;

    ZRMRecursiveMutex mutex_;  // held while a block runs
    ZRMStatisticsTable table_ ZRM_GUARDED_BY(mutex_);
    bool isChanging_ ZRM_GUARDED_BY(mutex_) = false;
    std::vector<ZRMStatisticsChange> changes_ ZRM_GUARDED_BY(mutex_);
    std::uint64_t savedChanges_ ZRM_GUARDED_BY(mutex_) = 0;
    std::deque<std::weak_ptr<ZRMStatisticsData>> recentlyInserted_ ZRM_GUARDED_BY(mutex_);
};
