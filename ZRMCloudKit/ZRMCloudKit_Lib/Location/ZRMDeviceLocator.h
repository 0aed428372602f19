// Finds the device's location, one detection at a time, within a time limit.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMDeviceLocating.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Timer/ZRMTimer.h"
#include "ZRMPlatform/Ports/Values/ZRMResult.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

// A detection ends at the first fix that is accurate enough, at the time limit with the last fix
// or error, or when the authorization is withdrawn. While the user has not decided on the
// authorization it waits, without a limit. A further request ends the one before.
//
// Everything happens on the main queue, where the members live; requests may come from any thread.
class ZRMDeviceLocator final : public ZRMDeviceLocating,
                               public ZRMLocationManagerDelegate,
                               public std::enable_shared_from_this<ZRMDeviceLocator> {
  public:
    // Receives a location, or an error: one of the location service, or in kZRMLocationErrorDomain
    // the code 0 (no location is known, or a newer request came) or 1 (not authorized).
    using CompletionHandler = std::function<void(const ZRMResult<ZRMLocation>& result)>;

    // Becomes the manager's delegate. On the main queue. The duration is in seconds.
    static std::shared_ptr<ZRMDeviceLocator> deviceLocatorWithLocationManager(
        std::shared_ptr<const ZRMPlatform> platform, std::shared_ptr<ZRMLocationManager> manager,
        double duration);

    // One detection. The handler is called once, on the main queue, without a lock; from there at
    // once when the request is made there and is refused.
    void currentLocationWithCompletionHandler(CompletionHandler handler);

    [[nodiscard]] double maxLocationDetectDuration() const { return maxLocationDetectDuration_; }
    // On the main queue.
    [[nodiscard]] bool isDetectingLocation() const { return isDetectingLocation_; }

    [[nodiscard]] std::shared_ptr<ZRMLocationDetection> makeDetection() override;

    void locationsUpdated(const std::vector<ZRMLocation>& locations) override;
    void locationFailed(const ZRMError& error) override;
    void authorizationChanged(int status) override;

  private:
    ZRMDeviceLocator(std::shared_ptr<const ZRMPlatform> platform,
                     std::shared_ptr<ZRMLocationManager> manager, double duration);

    void detect(CompletionHandler handler);
    void startUpdating();
    void processLatestLocation();
    // Stops timer and updates and forgets everything about the detection but its handler, which it
    // returns.
    CompletionHandler endDetection();

    const std::shared_ptr<const ZRMPlatform> platform_;
    const std::shared_ptr<ZRMLocationManager> locationManager_;
    const double maxLocationDetectDuration_;

    bool isDetectingLocation_ = false;
    CompletionHandler completionHandler_;
    std::optional<ZRMLocation> latestLocation_;
    std::optional<ZRMError> latestLocationError_;
    std::shared_ptr<ZRMTimer> locationDetectionTimeoutTimer_;
};
