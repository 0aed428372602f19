// Learns what enters and leaves the queue.
#pragma once

#include <memory>

#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsData.h"

class ZRMStatisticsDataSource;

// Called after the change is saved, inside the context's block that saved it.
class ZRMStatisticsDataSourceObserver {
  public:
    virtual ~ZRMStatisticsDataSourceObserver() = default;
    virtual void dataSourceDidInsertStatisticsData(
        ZRMStatisticsDataSource& dataSource, const std::shared_ptr<ZRMStatisticsData>& data) = 0;
    virtual void dataSourceDidDeleteStatisticsData(
        ZRMStatisticsDataSource& dataSource, const std::shared_ptr<ZRMStatisticsData>& data) = 0;
};
