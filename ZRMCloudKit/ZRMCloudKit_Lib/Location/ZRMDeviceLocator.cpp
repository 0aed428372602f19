#include "ZRMCloudKit/ZRMCloudKit_Lib/Location/ZRMDeviceLocator.h"

#include <utility>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Location/ZRMDetectDeviceLocationOperation.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSTimer/NSTimer+ZRMCoreKit.h"

namespace {

bool isAuthorized(int status) {
    return status == ZRMLocationAuthorizationAlways || status == ZRMLocationAuthorizationWhenInUse;
}

ZRMError locationUnknown() {
    return {kZRMLocationErrorDomain, ZRMLocationErrorLocationUnknown};
}

}  // namespace

std::shared_ptr<ZRMDeviceLocator> ZRMDeviceLocator::deviceLocatorWithLocationManager(
    std::shared_ptr<const ZRMPlatform> platform, std::shared_ptr<ZRMLocationManager> manager,
    double duration) {
    const std::shared_ptr<ZRMDeviceLocator> locator(
        new ZRMDeviceLocator(std::move(platform), std::move(manager), duration));
    locator->locationManager_->setDelegate(locator);
    return locator;
}

ZRMDeviceLocator::ZRMDeviceLocator(std::shared_ptr<const ZRMPlatform> platform,
                                   std::shared_ptr<ZRMLocationManager> manager, double duration)
    : platform_(std::move(platform)),
      locationManager_(std::move(manager)),
      maxLocationDetectDuration_(duration) {}

std::shared_ptr<ZRMLocationDetection> ZRMDeviceLocator::makeDetection() {
    return std::make_shared<ZRMDetectDeviceLocationOperation>(platform_, shared_from_this());
}

void ZRMDeviceLocator::currentLocationWithCompletionHandler(CompletionHandler handler) {
    const auto mainQueue = platform_->executor->mainQueue();
    if (mainQueue->isCurrent()) {
        detect(std::move(handler));
        return;
    }
    mainQueue->post([self = shared_from_this(), handler = std::move(handler)]() mutable {
        self->detect(std::move(handler));
    });
}

void ZRMDeviceLocator::detect(CompletionHandler handler) {
    if (isDetectingLocation_) {
        if (const auto superseded = endDetection()) {
            superseded(locationUnknown());
        }
        if (isDetectingLocation_) {
            // The handler asked again, which is the newer request of the two.
            handler(locationUnknown());
            return;
        }
    }
    const int status = locationManager_->authorizationStatus();
    if (status != ZRMLocationAuthorizationNotDetermined && !isAuthorized(status)) {
        handler(ZRMError(kZRMLocationErrorDomain, ZRMLocationErrorDenied));
        return;
    }
    isDetectingLocation_ = true;
    completionHandler_ = std::move(handler);
    if (isAuthorized(status)) {
        startUpdating();
    }
}

void ZRMDeviceLocator::startUpdating() {
    if (!locationDetectionTimeoutTimer_) {
        locationDetectionTimeoutTimer_ = zrm_scheduledTimerWithTimeInterval(
            platform_->executor, maxLocationDetectDuration_, false, [weak = weak_from_this()] {
                if (const auto self = weak.lock()) {
                    self->processLatestLocation();
                }
            });
    }
    locationManager_->startUpdatingLocation();
}

void ZRMDeviceLocator::locationsUpdated(const std::vector<ZRMLocation>& locations) {
    if (!isDetectingLocation_ || locations.empty()) {
        return;
    }
    latestLocation_ = locations.back();
    if (latestLocation_->horizontalAccuracy <= locationManager_->desiredAccuracy()) {
        processLatestLocation();
    }
}

void ZRMDeviceLocator::locationFailed(const ZRMError& error) {
    if (isDetectingLocation_) {
        latestLocationError_ = error;
    }
}

void ZRMDeviceLocator::authorizationChanged(int status) {
    if (!isDetectingLocation_) {
        return;
    }
    if (isAuthorized(status)) {
        startUpdating();
    } else {
        processLatestLocation();
    }
}

void ZRMDeviceLocator::processLatestLocation() {
    const auto location = latestLocation_;
    const auto error = latestLocationError_;
    // Before the handler is called, which may ask again.
    const auto handler = endDetection();
    if (!handler) {
        return;
    }
    if (location) {
        handler(*location);
    } else {
        handler(error.value_or(locationUnknown()));
    }
}

ZRMDeviceLocator::CompletionHandler ZRMDeviceLocator::endDetection() {
    if (locationDetectionTimeoutTimer_) {
        locationDetectionTimeoutTimer_->invalidate();
        locationDetectionTimeoutTimer_.reset();
    }
    locationManager_->stopUpdatingLocation();
    latestLocation_.reset();
    latestLocationError_.reset();
    isDetectingLocation_ = false;
    return std::exchange(completionHandler_, nullptr);
}
