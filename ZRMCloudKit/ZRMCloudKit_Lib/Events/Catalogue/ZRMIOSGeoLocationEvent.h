// Where the device is, and how it is attached to the network.
#pragma once

#include <memory>
#include <optional>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMTableEvent.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Reachability/ZRMReachabilityInspector.h"
#include "ZRMPlatform/Ports/Values/ZRMLocation.h"

// What the "location" object is made of.
struct ZRMGeoLocationDetails {
    std::optional<ZRMLocation> location;
    ZRMNetworkStatus networkStatus = ZRMNetworkStatus::NotReachable;
    bool locationServicesEnabled = false;
};

class ZRMIOSGeoLocationEvent final : public ZRMTableEvent<ZRMIOSGeoLocationEvent> {
  public:
    static ZRMEventTable<ZRMIOSGeoLocationEvent> table();
    // The members of the "location" object.
    static std::span<const ZRMEventField<ZRMGeoLocationDetails>> locationFields();

    // The location may be absent. The inspector is of the internet connection and is asked whenever
    // the body is built.
    ZRMIOSGeoLocationEvent(std::optional<ZRMLocation> location,
                           std::shared_ptr<const ZRMReachabilityInspector> reachabilityInspector,
                           bool locationServicesEnabled,
                           std::shared_ptr<const ZRMCommonParametersProvider> provider);

    [[nodiscard]] const std::optional<ZRMLocation>& location() const { return location_; }
    [[nodiscard]] const std::shared_ptr<const ZRMReachabilityInspector>& reachabilityInspector()
        const {
        return reachabilityInspector_;
    }
    [[nodiscard]] bool locationServicesEnabled() const { return locationServicesEnabled_; }

    [[nodiscard]] ZRMDictionary locationBody() const;
    // The whole body.
    [[nodiscard]] ZRMDictionary coordinatesEventParameters() const;

  private:
    std::optional<ZRMLocation> location_;
    std::shared_ptr<const ZRMReachabilityInspector> reachabilityInspector_;
    bool locationServicesEnabled_;
};
