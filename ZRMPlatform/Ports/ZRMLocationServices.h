// Where the device is.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "ZRMPlatform/Ports/Values/ZRMError.h"
#include "ZRMPlatform/Ports/Values/ZRMLocation.h"

// The domain of the errors that the location service gives.
inline constexpr const char* kZRMLocationErrorDomain = "kCLErrorDomain";

// Codes in that domain.
enum ZRMLocationErrorCode : std::int64_t {
    ZRMLocationErrorLocationUnknown = 0,
    ZRMLocationErrorDenied = 1,
};

// Whether the application may ask where the device is.
enum ZRMLocationAuthorizationStatus : int {
    ZRMLocationAuthorizationNotDetermined = 0,
    ZRMLocationAuthorizationRestricted = 1,
    ZRMLocationAuthorizationDenied = 2,
    ZRMLocationAuthorizationAlways = 3,
    ZRMLocationAuthorizationWhenInUse = 4,
};

class ZRMLocationAuthorization {
  public:
    virtual ~ZRMLocationAuthorization() = default;
    // A ZRMLocationAuthorizationStatus. From any thread.
    [[nodiscard]] virtual int status() const = 0;
};

// Called on the main queue.
class ZRMLocationManagerDelegate {
  public:
    virtual ~ZRMLocationManagerDelegate() = default;
    // At least one, the latest last.
    virtual void locationsUpdated(const std::vector<ZRMLocation>& locations) = 0;
    // Updates go on.
    virtual void locationFailed(const ZRMError& error) = 0;
    virtual void authorizationChanged(int status) = 0;
};

// Used on the main queue. Fixes are told however little the device has moved.
class ZRMLocationManager {
  public:
    virtual ~ZRMLocationManager() = default;
    // Kept weakly. Authorization changes are told from now on, fixes and failures while updating.
    virtual void setDelegate(std::weak_ptr<ZRMLocationManagerDelegate> delegate) = 0;
    [[nodiscard]] virtual int authorizationStatus() const = 0;
    // Metres; as it was made with.
    [[nodiscard]] virtual double desiredAccuracy() const = 0;
    // Starting again while updating changes nothing; the same of stopping.
    virtual void startUpdatingLocation() = 0;
    virtual void stopUpdatingLocation() = 0;
};

class ZRMLocationServices {
  public:
    virtual ~ZRMLocationServices() = default;
    // Whether the user has location services switched on. From any thread.
    [[nodiscard]] virtual bool locationServicesEnabled() const = 0;
    // On the main queue.
    [[nodiscard]] virtual std::shared_ptr<ZRMLocationManager> makeLocationManager(
        double desiredAccuracy) = 0;
};
