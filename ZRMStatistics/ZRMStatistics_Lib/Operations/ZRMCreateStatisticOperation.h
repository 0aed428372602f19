// Adds a record to the queue.
#pragma once

#include "ZRMCoreKit/ZRMCoreKit_Lib/ServerTime/ZRMServerTimeProvider.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMStatisticBaseOperation.h"

class ZRMCreateStatisticOperation final : public ZRMStatisticBaseOperation {
  public:
    ZRMCreateStatisticOperation(const ZRMSharedData& jwsData,
                                std::shared_ptr<ZRMStatisticsContext> context,
                                std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider,
                                std::int16_t priority);

    [[nodiscard]] std::int16_t priority() const { return priority_; }

  private:
    Outcome changeRecords() override;
    void logSaveFailure(const ZRMError& error) override;

    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider_;
    std::int16_t priority_;
};
