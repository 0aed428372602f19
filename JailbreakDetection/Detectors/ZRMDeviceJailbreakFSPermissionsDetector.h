// File-system rights that the sandbox of a stock device does not give.
#pragma once

#include <memory>

#include "JailbreakDetection/ZRMDeviceJailbreakDetector.h"
#include "ZRMPlatform/Ports/ZRMBundles.h"
#include "ZRMPlatform/Ports/ZRMJailbreakTraits.h"

class ZRMDeviceJailbreakFSPermissionsDetector final : public ZRMDeviceJailbreakDetector {
  public:
    ZRMDeviceJailbreakFSPermissionsDetector(std::shared_ptr<ZRMFileAccess> fileAccess,
                                            std::shared_ptr<ZRMMainBundle> mainBundle);

    // The second check is made only when the first finds nothing.
    [[nodiscard]] bool isJailbroken() override;
    [[nodiscard]] ZRMDeviceJailbreakDetectorType detectorType() const override;

    // Whether "/Applications" is readable.
    [[nodiscard]] bool checkSysFilesPermissions() const;
    // Whether the main bundle's Info.plist is writable.
    [[nodiscard]] bool checkAppBundlePermissions() const;

  private:
    std::shared_ptr<ZRMFileAccess> fileAccess_;
    std::shared_ptr<ZRMMainBundle> mainBundle_;
};
