#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMIOSGeoLocationEvent.h"

#include <array>
#include <utility>

namespace {

template <auto Member>
std::optional<double> ofFix(const ZRMGeoLocationDetails& details) {
    return details.location ? std::optional(std::invoke(Member, *details.location)) : std::nullopt;
}

bool isCellular(const ZRMGeoLocationDetails& details) {
    return details.networkStatus == ZRMNetworkStatus::ReachableViaWWAN;
}

bool isWiFi(const ZRMGeoLocationDetails& details) {
    return details.networkStatus == ZRMNetworkStatus::ReachableViaWiFi;
}

}  // namespace

ZRMEventTable<ZRMIOSGeoLocationEvent> ZRMIOSGeoLocationEvent::table() {
    static constexpr std::array kFields{
        zrm_eventField<&ZRMIOSGeoLocationEvent::locationBody>(
            "location", "the fix and the flags; the flags alone when no location was found"),
    };
    return {"IOSGeoLocationEvent", 1, kZRMEventPermissionLocation, kFields};
}

std::span<const ZRMEventField<ZRMGeoLocationDetails>> ZRMIOSGeoLocationEvent::locationFields() {
    static constexpr std::array kFields{
        zrm_eventField<&ofFix<&ZRMLocation::latitude>>("latitude", "degrees, north is positive"),
        zrm_eventField<&ofFix<&ZRMLocation::longitude>>("longitude", "degrees, east is positive"),
        zrm_eventField<&ofFix<&ZRMLocation::horizontalAccuracy>>(
            "precision", "radius of the horizontal uncertainty in metres"),
        zrm_eventField<&isCellular>("gprsEnabled", "the internet is reached by a cellular network"),
        zrm_eventField<&ZRMGeoLocationDetails::locationServicesEnabled>(
            "gpsEnabled", "location services are switched on"),
        zrm_eventField<&isWiFi>("wifiEnabled",
                                "the internet is reached by Wi-Fi or another path of no modem"),
    };
    return kFields;
}

ZRMIOSGeoLocationEvent::ZRMIOSGeoLocationEvent(
    std::optional<ZRMLocation> location,
    std::shared_ptr<const ZRMReachabilityInspector> reachabilityInspector,
    bool locationServicesEnabled, std::shared_ptr<const ZRMCommonParametersProvider> provider)
    : ZRMTableEvent(std::move(provider)),
      location_(location),
      reachabilityInspector_(std::move(reachabilityInspector)),
      locationServicesEnabled_(locationServicesEnabled) {}

ZRMDictionary ZRMIOSGeoLocationEvent::locationBody() const {
    const ZRMGeoLocationDetails details{
        location_, reachabilityInspector_->currentReachabilityStatus(), locationServicesEnabled_};
    return zrm_eventBody(details, locationFields());
}

ZRMDictionary ZRMIOSGeoLocationEvent::coordinatesEventParameters() const {
    return zrm_eventBody(*this, table().fields);
}
