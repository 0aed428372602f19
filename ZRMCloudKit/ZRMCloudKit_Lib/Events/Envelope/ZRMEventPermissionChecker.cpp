#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Envelope/ZRMEventPermissionChecker.h"

#include <utility>

namespace {

constexpr int kAuthorizedAlways = 3;
constexpr int kAuthorizedWhenInUse = 4;

}  // namespace

ZRMEventPermissionChecker::ZRMEventPermissionChecker(
    std::shared_ptr<ZRMLocationAuthorization> authorization)
    : authorization_(std::move(authorization)) {}

bool ZRMEventPermissionChecker::isPermissionGranted(ZRMEventPermissions mask) const {
    if (mask == kZRMEventPermissionNone) {
        return true;
    }
    return (mask & kZRMEventPermissionLocation) != 0 && isLocationPermissionGranted();
}

bool ZRMEventPermissionChecker::isLocationPermissionGranted() const {
    const int status = authorization_->status();
    return status == kAuthorizedAlways || status == kAuthorizedWhenInUse;
}
