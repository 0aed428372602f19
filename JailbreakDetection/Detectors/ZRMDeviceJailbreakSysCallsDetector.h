// Whether the C library's command processor is available; the sandbox of a stock device offers
// none.
#pragma once

#include <memory>

#include "JailbreakDetection/ZRMDeviceJailbreakDetector.h"
#include "ZRMPlatform/Ports/ZRMJailbreakTraits.h"

class ZRMDeviceJailbreakSysCallsDetector final : public ZRMDeviceJailbreakDetector {
  public:
    explicit ZRMDeviceJailbreakSysCallsDetector(
        std::shared_ptr<ZRMCommandProcessor> commandProcessor);

    [[nodiscard]] bool isJailbroken() override;
    [[nodiscard]] ZRMDeviceJailbreakDetectorType detectorType() const override;

  private:
    std::shared_ptr<ZRMCommandProcessor> commandProcessor_;
};
