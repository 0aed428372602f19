#include "ZRMCloudKit/ZRMCloudKit_Lib/ScreenCapture/ZRMScreenShotDetector.h"

#include <utility>

ZRMScreenShotDetector::ZRMScreenShotDetector(
    std::shared_ptr<ZRMApplicationNotifications> notifications)
    : notifications_(std::move(notifications)) {}

void ZRMScreenShotDetector::startDetection(std::function<void()> completionHandler) {
    {
        const ZRMLockGuard lock(mutex_);
        completionHandler_ = std::move(completionHandler);
    }
    auto subscription = notifications_->observe(ZRMApplicationNotification::UserDidTakeScreenshot,
                                                [weak = weak_from_this()] {
                                                    if (const auto self = weak.lock()) {
                                                        self->sendInfo();
                                                    }
                                                });
    const ZRMLockGuard lock(mutex_);
    subscription_.swap(subscription);
}

void ZRMScreenShotDetector::sendInfo() {
    std::function<void()> handler;
    {
        const ZRMLockGuard lock(mutex_);
        handler = completionHandler_;
    }
    if (handler) {
        handler();
    }
}
