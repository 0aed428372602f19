// Reports each screenshot that the user takes.
#pragma once

#include <memory>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMScreenshotDetecting.h"
#include "ZRMPlatform/Ports/ZRMApplicationNotifications.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

// Owned by a shared pointer. Reports on the main queue.
class ZRMScreenShotDetector final : public ZRMScreenshotDetecting,
                                    public std::enable_shared_from_this<ZRMScreenShotDetector> {
  public:
    explicit ZRMScreenShotDetector(std::shared_ptr<ZRMApplicationNotifications> notifications);

    void startDetection(std::function<void()> completionHandler) override;
    // Reports one, when detection was started.
    void sendInfo();

  private:
    const std::shared_ptr<ZRMApplicationNotifications> notifications_;

    ZRMMutex mutex_;  // guards what follows; never held while calling out
    std::function<void()> completionHandler_ ZRM_GUARDED_BY(mutex_);
    std::shared_ptr<ZRMSubscription> subscription_ ZRM_GUARDED_BY(mutex_);
};
