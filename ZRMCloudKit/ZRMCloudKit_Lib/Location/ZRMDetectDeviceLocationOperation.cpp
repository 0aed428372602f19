#include "ZRMCloudKit/ZRMCloudKit_Lib/Location/ZRMDetectDeviceLocationOperation.h"

#include <utility>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMIOSGeoLocationEvent.h"

ZRMDetectDeviceLocationOperation::ZRMDetectDeviceLocationOperation(
    std::shared_ptr<const ZRMPlatform> platform, std::shared_ptr<ZRMDeviceLocator> deviceLocator)
    : ZRMLocationDetection(platform->consoleLog),
      platform_(std::move(platform)),
      deviceLocator_(std::move(deviceLocator)) {}

std::optional<ZRMLocation> ZRMDetectDeviceLocationOperation::location() const {
    const ZRMLockGuard lock(mutex_);
    return location_;
}

std::shared_ptr<ZRMCloudKitEvent> ZRMDetectDeviceLocationOperation::eventWithProvider(
    std::shared_ptr<const ZRMCommonParametersProvider> provider) const {
    return std::make_shared<ZRMIOSGeoLocationEvent>(
        location(), ZRMReachabilityInspector::inspectorForInternetConnection(platform_),
        platform_->locationServices->locationServicesEnabled(), std::move(provider));
}

void ZRMDetectDeviceLocationOperation::execute() {
    // Weakly: its queue keeps the operation until it has finished.
    deviceLocator_->currentLocationWithCompletionHandler(
        [weak = weak_from_this()](const ZRMResult<ZRMLocation>& result) {
            if (const auto self = weak.lock()) {
                static_cast<ZRMDetectDeviceLocationOperation&>(*self).detected(result);
            }
        });
}

void ZRMDetectDeviceLocationOperation::detected(const ZRMResult<ZRMLocation>& result) {
    if (!result) {
        finishWithError(result.error());
        return;
    }
    {
        const ZRMLockGuard lock(mutex_);
        location_ = result.value();
    }
    finishWithError(std::nullopt);
}
