// Whether a package manager would open its URL scheme.
#pragma once

#include <memory>

#include "JailbreakDetection/ZRMDeviceJailbreakDetector.h"
#include "ZRMPlatform/Ports/ZRMClock.h"
#include "ZRMPlatform/Ports/ZRMExecutor.h"
#include "ZRMPlatform/Ports/ZRMJailbreakTraits.h"

// The question is asked on the main queue. A caller elsewhere blocks until it is answered, so the
// main queue must not wait for that caller.
class ZRMDeviceJailbreakUrlSchemesDetector final : public ZRMDeviceJailbreakDetector {
  public:
    ZRMDeviceJailbreakUrlSchemesDetector(std::shared_ptr<ZRMUrlOpener> urlOpener,
                                         std::shared_ptr<ZRMExecutor> executor,
                                         std::shared_ptr<ZRMClock> clock);

    [[nodiscard]] bool isJailbroken() override;
    [[nodiscard]] ZRMDeviceJailbreakDetectorType detectorType() const override;

  private:
    std::shared_ptr<ZRMUrlOpener> urlOpener_;
    std::shared_ptr<ZRMExecutor> executor_;
    std::shared_ptr<ZRMClock> clock_;
};
