// Counts the day on which a record's upload was attempted.
#pragma once

#include "ZRMCoreKit/ZRMCoreKit_Lib/ServerTime/ZRMServerTimeProvider.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMStatisticBaseOperation.h"

// Bytes that are not stored are only logged.
class ZRMUpdateStatisticOperation final : public ZRMStatisticBaseOperation {
  public:
    ZRMUpdateStatisticOperation(std::shared_ptr<ZRMStatisticsData> jwsData,
                                std::shared_ptr<ZRMStatisticsContext> context,
                                std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider);

  private:
    Outcome changeRecords() override;
    void logSaveFailure(const ZRMError& error) override;

    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider_;
};
