#include "ZRMCloudKit/ZRMCloudKit_Lib/ScreenCapture/ZRMScreenRecordingDetector.h"

#include <utility>

#include "ZRMCloudKit/ZRMCloudKit_Lib/ScreenCapture/ZRMScreenRecordingChecker.h"

ZRMScreenRecordingDetector::ZRMScreenRecordingDetector(
    const ZRMScreenRecordingEventPolicy& policy, std::shared_ptr<const ZRMScreens> screens,
    std::shared_ptr<ZRMApplicationNotifications> notifications,
    std::shared_ptr<ZRMQueue> retryQueue)
    : eventPolicy_(policy),
      screens_(std::move(screens)),
      notifications_(std::move(notifications)),
      retryQueue_(std::move(retryQueue)),
      numberOfRemainingRetryAttempts_(policy.numberOfRetryAttempts()) {}

ZRMScreenRecordingDetector::~ZRMScreenRecordingDetector() {
    invalidateRetryChecksTimer();
}

std::uint64_t ZRMScreenRecordingDetector::numberOfRemainingRetryAttempts() const {
    const ZRMLockGuard lock(mutex_);
    return numberOfRemainingRetryAttempts_;
}

void ZRMScreenRecordingDetector::startDetection(
    std::function<void(bool recording)> completionHandler) {
    {
        const ZRMLockGuard lock(mutex_);
        completionHandler_ = std::move(completionHandler);
    }
    const auto check = [weak = weak_from_this()] {
        if (const auto self = weak.lock()) {
            self->performScreenRecordingChecks();
        }
    };
    // A system that cannot say whether a screen is captured does not post the second one.
    std::vector subscriptions{
        notifications_->observe(ZRMApplicationNotification::ScreenDidConnect, check),
        notifications_->observe(ZRMApplicationNotification::ScreenCapturedDidChange, check)};
    {
        const ZRMLockGuard lock(mutex_);
        subscriptions_.swap(subscriptions);
    }
    performScreenRecordingChecks();
}

void ZRMScreenRecordingDetector::performScreenRecordingChecks() {
    const bool recording = ZRMScreenRecordingChecker::isRecording(*screens_);
    if (recording) {
        scheduleRetryChecksTimerIfNeeded();
    } else {
        invalidateRetryChecksTimer();
    }
    std::function<void(bool)> handler;
    {
        const ZRMLockGuard lock(mutex_);
        handler = completionHandler_;
    }
    if (handler) {
        handler(recording);
    }
}

void ZRMScreenRecordingDetector::scheduleRetryChecksTimerIfNeeded() {
    const ZRMLockGuard lock(mutex_);
    if (retryChecksTimer_ || numberOfRemainingRetryAttempts_ == 0) {
        return;
    }
    const auto number = ++timersMade_;
    retryChecksTimer_ =
        retryQueue_->postAfter(eventPolicy_.retryInterval(), [weak = weak_from_this(), number] {
            if (const auto self = weak.lock()) {
                self->retryChecksTimerFired(number);
            }
        });
    --numberOfRemainingRetryAttempts_;
}

void ZRMScreenRecordingDetector::invalidateRetryChecksTimer() {
    std::shared_ptr<ZRMTimerHandle> timer;
    {
        const ZRMLockGuard lock(mutex_);
        timer.swap(retryChecksTimer_);
        numberOfRemainingRetryAttempts_ = eventPolicy_.numberOfRetryAttempts();
    }
    if (timer) {
        timer->cancel();
    }
}

void ZRMScreenRecordingDetector::retryChecksTimerFired(std::uint64_t number) {
    {
        const ZRMLockGuard lock(mutex_);
        // A run that had begun as its timer was cancelled, perhaps for a new one.
        if (!retryChecksTimer_ || number != timersMade_) {
            return;
        }
        retryChecksTimer_ = nullptr;
    }
    performScreenRecordingChecks();
}
