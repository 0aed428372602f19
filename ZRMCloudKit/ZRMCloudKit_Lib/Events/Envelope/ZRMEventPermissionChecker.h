// Whether the host application was granted the permissions that events report.
#pragma once

#include <memory>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMCloudKitEvent.h"
#include "ZRMPlatform/Ports/ZRMLocationServices.h"

// May be used from any thread; answers for the moment of the call.
class ZRMEventPermissionChecker {
  public:
    explicit ZRMEventPermissionChecker(std::shared_ptr<ZRMLocationAuthorization> authorization);

    // True for the empty mask; otherwise whether the mask's one known permission is granted, false
    // when it holds none that is known.
    [[nodiscard]] bool isPermissionGranted(ZRMEventPermissions mask) const;
    // Always, or while the application is in use.
    [[nodiscard]] bool isLocationPermissionGranted() const;

  private:
    std::shared_ptr<ZRMLocationAuthorization> authorization_;
};
