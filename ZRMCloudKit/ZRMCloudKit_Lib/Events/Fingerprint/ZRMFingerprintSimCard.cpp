#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintSimCard.h"

#include <array>

namespace {

// What the telephony service reports without a SIM card.
constexpr char kNoText[] = "--";
constexpr char kNoNumber[] = "65535";

template <auto Member, const char* Placeholder>
std::string textOf(const ZRMCarrier& carrier) {
    const std::optional<std::string>& text = carrier.*Member;
    return text && *text != Placeholder ? *text : std::string();
}

}  // namespace

std::span<const ZRMEventField<ZRMCarrier>> zrm_fingerprintSimCardFields() {
    static constexpr std::array kFields{
        zrm_eventField<&ZRMCarrier::allowsVoip>("carrierAllowsVOIP",
                                                "the carrier allows voice over IP"),
        zrm_eventField<&textOf<&ZRMCarrier::isoCountryCode, kNoText>>(
            "carrierIsoCountryCode", "the country's ISO code, or empty"),
        zrm_eventField<&textOf<&ZRMCarrier::mobileCountryCode, kNoNumber>>(
            "carrierMobileCountryCode", "the mobile country code, or empty"),
        zrm_eventField<&textOf<&ZRMCarrier::mobileNetworkCode, kNoNumber>>(
            "carrierMobileNetworkCode", "the mobile network code, or empty"),
        zrm_eventField<&textOf<&ZRMCarrier::name, kNoText>>("carrierName",
                                                            "the carrier's name, or empty"),
    };
    return kFields;
}
