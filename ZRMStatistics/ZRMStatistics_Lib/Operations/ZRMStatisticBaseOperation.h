// One change of the queue's records, saved before the operation finishes.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMErrorProneOperation.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsContext.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsData.h"

class ZRMStatisticsSaveGroup;

// Finishes on the thread that started it. A failure is the operation's error and in the log.
class ZRMStatisticBaseOperation : public ZRMErrorProneOperation {
  public:
    // How the change came out.
    struct Outcome {
        std::optional<ZRMError> error;
        std::function<void()> log;  // what the log is to say; may be empty
    };

    [[nodiscard]] const std::shared_ptr<ZRMStatisticsData>& jwsData() const { return jwsData_; }
    [[nodiscard]] const std::shared_ptr<ZRMStatisticsContext>& context() const { return context_; }

  protected:
    ZRMStatisticBaseOperation(std::shared_ptr<ZRMStatisticsData> jwsData,
                              std::shared_ptr<ZRMStatisticsContext> context);

    void execute() final;

    // Changes the records inside a block of the context, without saving.
    virtual Outcome changeRecords() = 0;
    // What the log says of a save that failed.
    virtual void logSaveFailure(const ZRMError& error) = 0;

    // A stored record with the operation's bytes: the one they were read from, else the first.
    // Without one, `missing` says why.
    struct Found {
        std::optional<ZRMStatisticEntity> statistic;
        Outcome missing;
    };
    Found findStatistic();
    // The operation's bytes as UTF-8 text; "(null)" where they are none.
    [[nodiscard]] std::string jwsText() const;

  private:
    friend class ZRMStatisticsSaveGroup;

    Outcome runAlone();
    void logMissing();

    std::shared_ptr<ZRMStatisticsData> jwsData_;
    std::shared_ptr<ZRMStatisticsContext> context_;
    std::optional<Outcome> outcome_;  // once a group has saved the change
};
