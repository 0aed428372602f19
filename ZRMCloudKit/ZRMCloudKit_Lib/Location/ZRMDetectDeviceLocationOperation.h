// One detection of the device's location as an operation.
#pragma once

#include <memory>
#include <optional>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMDeviceLocating.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Location/ZRMDeviceLocator.h"
#include "ZRMPlatform/Ports/Values/ZRMLocation.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

// Finishes on the main queue, with the locator's error when it found nothing.
class ZRMDetectDeviceLocationOperation final : public ZRMLocationDetection {
  public:
    ZRMDetectDeviceLocationOperation(std::shared_ptr<const ZRMPlatform> platform,
                                     std::shared_ptr<ZRMDeviceLocator> deviceLocator);

    // The result; absent before the end and where there is none. From any thread.
    [[nodiscard]] std::optional<ZRMLocation> location() const;

    [[nodiscard]] std::shared_ptr<ZRMCloudKitEvent> eventWithProvider(
        std::shared_ptr<const ZRMCommonParametersProvider> provider) const override;

  protected:
    void execute() override;

  private:
    void detected(const ZRMResult<ZRMLocation>& result);

    const std::shared_ptr<const ZRMPlatform> platform_;
    const std::shared_ptr<ZRMDeviceLocator> deviceLocator_;
    mutable ZRMMutex mutex_;  // guards what follows
    std::optional<ZRMLocation> location_ ZRM_GUARDED_BY(mutex_);
};
