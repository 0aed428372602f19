#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMCloudKit/Operations/ZRMCloudKitSendLocationOperation.h"

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"

ZRMCloudKitSendLocationOperation::ZRMCloudKitSendLocationOperation(
    std::shared_ptr<ZRMConsoleLog> consoleLog, std::shared_ptr<ZRMCloudKit> cloudKit)
    : ZRMErrorProneOperation(std::move(consoleLog)), cloudKit_(std::move(cloudKit)) {}

void ZRMCloudKitSendLocationOperation::execute() {
    const auto self =
        std::static_pointer_cast<ZRMCloudKitSendLocationOperation>(shared_from_this());
    cloudKit_->sendDeviceCoordinatesWithAccuracy(
        kAccuracyMetres, kMaxDetectionDurationSeconds, [self](std::optional<ZRMError> error) {
            if (error) {
                zrm_logError(self.get(), error->localizedDescription());
            } else {
                zrm_logVerbose(self.get(), "Send location success");
            }
            self->finishWithError(std::move(error));
        });
}
