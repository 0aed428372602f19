// Asks the event core for one geolocation event and ends when it is on its way.
#pragma once

#include <memory>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMErrorProneOperation.h"

// Ends with the reason when no location was found; the event is sent all the same.
class ZRMCloudKitSendLocationOperation final : public ZRMErrorProneOperation {
  public:
    static constexpr double kAccuracyMetres = 10;
    static constexpr double kMaxDetectionDurationSeconds = 10;

    ZRMCloudKitSendLocationOperation(std::shared_ptr<ZRMConsoleLog> consoleLog,
                                     std::shared_ptr<ZRMCloudKit> cloudKit);

  protected:
    void execute() override;

  private:
    const std::shared_ptr<ZRMCloudKit> cloudKit_;
};
