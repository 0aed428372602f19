// Reports whether the screen is recorded: on every screen event and, while a recording lasts, a
// limited number of times after a delay.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMScreenRecordingDetecting.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Policies/ZRMScreenRecordingEventPolicy.h"
#include "ZRMPlatform/Ports/ZRMApplicationNotifications.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMQueue.h"
#include "ZRMPlatform/Ports/ZRMScreens.h"

// Owned by a shared pointer; the release ends its timer. Checks on the main queue after a screen
// event and on the given queue after a delay, so that reports may come from both at once.
class ZRMScreenRecordingDetector final
    : public ZRMScreenRecordingDetecting,
      public std::enable_shared_from_this<ZRMScreenRecordingDetector> {
  public:
    ZRMScreenRecordingDetector(const ZRMScreenRecordingEventPolicy& policy,
                               std::shared_ptr<const ZRMScreens> screens,
                               std::shared_ptr<ZRMApplicationNotifications> notifications,
                               std::shared_ptr<ZRMQueue> retryQueue);
    ~ZRMScreenRecordingDetector() override;
    ZRMScreenRecordingDetector(const ZRMScreenRecordingDetector&) = delete;
    ZRMScreenRecordingDetector& operator=(const ZRMScreenRecordingDetector&) = delete;

    [[nodiscard]] const ZRMScreenRecordingEventPolicy& eventPolicy() const { return eventPolicy_; }
    [[nodiscard]] std::uint64_t numberOfRemainingRetryAttempts() const;

    void startDetection(std::function<void(bool recording)> completionHandler) override;

    // Looks now and reports what it finds, also when that has not changed.
    void performScreenRecordingChecks();
    // Arranges one later check, unless one is arranged or no attempts remain. The platform's timer
    // is exact; up to a second late would do.
    void scheduleRetryChecksTimerIfNeeded();
    // Drops that check and restores the number of attempts.
    void invalidateRetryChecksTimer();

  private:
    void retryChecksTimerFired(std::uint64_t number);

    const ZRMScreenRecordingEventPolicy eventPolicy_;
    const std::shared_ptr<const ZRMScreens> screens_;
    const std::shared_ptr<ZRMApplicationNotifications> notifications_;
    const std::shared_ptr<ZRMQueue> retryQueue_;

    // Guards what follows. Of foreign code, only the retry queue is called while it is held.
    mutable ZRMMutex mutex_;
    std::function<void(bool)> completionHandler_ ZRM_GUARDED_BY(mutex_);
    std::uint64_t numberOfRemainingRetryAttempts_ ZRM_GUARDED_BY(mutex_);
    std::shared_ptr<ZRMTimerHandle> retryChecksTimer_ ZRM_GUARDED_BY(mutex_);
    std::uint64_t timersMade_ ZRM_GUARDED_BY(mutex_) = 0;
    std::vector<std::shared_ptr<ZRMSubscription>> subscriptions_ ZRM_GUARDED_BY(mutex_);
};
