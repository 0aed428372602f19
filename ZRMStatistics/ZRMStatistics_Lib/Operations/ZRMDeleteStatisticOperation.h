// Takes a record off the queue.
#pragma once

#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMStatisticBaseOperation.h"

// Bytes that are not stored are only logged.
class ZRMDeleteStatisticOperation final : public ZRMStatisticBaseOperation {
  public:
    ZRMDeleteStatisticOperation(std::shared_ptr<ZRMStatisticsData> jwsData,
                                std::shared_ptr<ZRMStatisticsContext> context);

  private:
    Outcome changeRecords() override;
    void logSaveFailure(const ZRMError& error) override;
};
