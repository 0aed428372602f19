// The bytes of a stored record, read when they are needed.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <unordered_map>

#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsData.h"

class ZRMStoredStatisticsData;

// Knows every living ZRMStoredStatisticsData by its record, so that there is one a record.
class ZRMStoredStatisticsDataRegistry {
  public:
    [[nodiscard]] std::shared_ptr<ZRMStoredStatisticsData> find(std::int64_t record) const;
    // The one known for its record, where it is this data.
    [[nodiscard]] std::shared_ptr<ZRMStoredStatisticsData> knownFor(
        const ZRMStatisticsData& data) const;
    // Takes the place of another one of that record.
    void add(const std::shared_ptr<ZRMStoredStatisticsData>& data);
    // Where `data` is the one known for its record, or where that one is no more.
    void remove(const ZRMStoredStatisticsData& data);
    void reserve(std::size_t count);

  private:
    mutable ZRMMutex mutex_;
    std::unordered_map<std::int64_t, std::weak_ptr<ZRMStoredStatisticsData>> known_
        ZRM_GUARDED_BY(mutex_);
};

class ZRMStoredStatisticsData final : public ZRMStatisticsData {
  public:
    // Reads the bytes of a record; null when it is gone or cannot be read.
    using Reader = std::function<ZRMSharedData(std::int64_t record)>;

    struct Source {
        Reader read;
        ZRMStoredStatisticsDataRegistry registry;
    };

    // `bytes` may be null; `identity` is that of the bytes before they were stored, or null.
    ZRMStoredStatisticsData(std::shared_ptr<Source> source, std::int64_t record, std::size_t length,
                            ZRMSharedData bytes, const void* identity);
    ~ZRMStoredStatisticsData() override;

    [[nodiscard]] std::int64_t record() const { return record_; }
    [[nodiscard]] ZRMSharedData bytes() const override;
    void turnIntoFault() override;
    // From now on the bytes stay in memory: the record is about to go.
    void keep(ZRMSharedData bytes);

  private:
    [[nodiscard]] ZRMSharedData heldBytes() const;

    std::shared_ptr<Source> source_;
    std::int64_t record_;
    mutable ZRMMutex mutex_;
    ZRMSharedData bytes_ ZRM_GUARDED_BY(mutex_);
    bool isKept_ ZRM_GUARDED_BY(mutex_) = false;
};
