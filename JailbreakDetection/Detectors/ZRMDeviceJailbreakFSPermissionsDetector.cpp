#include "JailbreakDetection/Detectors/ZRMDeviceJailbreakFSPermissionsDetector.h"

#include <utility>

ZRMDeviceJailbreakFSPermissionsDetector::ZRMDeviceJailbreakFSPermissionsDetector(
    std::shared_ptr<ZRMFileAccess> fileAccess, std::shared_ptr<ZRMMainBundle> mainBundle)
    : fileAccess_(std::move(fileAccess)), mainBundle_(std::move(mainBundle)) {}

bool ZRMDeviceJailbreakFSPermissionsDetector::isJailbroken() {
    return checkSysFilesPermissions() || checkAppBundlePermissions();
}

ZRMDeviceJailbreakDetectorType ZRMDeviceJailbreakFSPermissionsDetector::detectorType() const {
    return ZRMDeviceJailbreakDetectorFSPermissions;
}

bool ZRMDeviceJailbreakFSPermissionsDetector::checkSysFilesPermissions() const {
    return fileAccess_->isReadable("/Applications");
}

bool ZRMDeviceJailbreakFSPermissionsDetector::checkAppBundlePermissions() const {
    return fileAccess_->isWritable(mainBundle_->path() + "/Info.plist");
}
