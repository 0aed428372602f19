#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Envelope/ZRMCommonParametersProvider.h"

#include <array>
#include <utility>

namespace {

// Whole seconds: the milliseconds are dropped.
std::optional<ZRMDate> serverDate(const ZRMServerTimeProvider* provider) {
    if (provider == nullptr || !provider->isValid()) {
        return {};
    }
    const std::int64_t wholeSeconds = provider->getTime() / 1000;
    return ZRMDate{static_cast<double>(wholeSeconds)};
}

std::optional<ZRMDictionary> permissionStates(const ZRMEventPermissionChecker& checker,
                                              ZRMEventPermissions mask) {
    if (mask == kZRMEventPermissionNone) {
        return {};
    }
    ZRMDictionary states;
    if ((mask & kZRMEventPermissionLocation) != 0) {
        states["location"] = checker.isPermissionGranted(kZRMEventPermissionLocation);
    }
    return states;
}

}  // namespace

std::span<const ZRMEventField<ZRMCommonParameters>> ZRMCommonParameters::fields() {
    using Parameters = ZRMCommonParameters;
    static constexpr std::array kFields{
        zrm_eventField<&Parameters::environmentData>("environmentData",
                                                     "the environment at the library's start"),
        zrm_eventField<&Parameters::eventDate>("eventDateTime", "when the event was built"),
        zrm_eventField<&Parameters::structVersion>("structVersion",
                                                   "version of this event type's layout"),
        zrm_eventField<&Parameters::serverDate>(
            "serverEventDateTime", "the server's time in whole seconds, once it is known"),
        zrm_eventField<&Parameters::permissions>(
            "permissions",
            "\"location\": bool, whether it is granted; only where the event reports it"),
    };
    return kFields;
}

ZRMCommonParametersProvider::ZRMCommonParametersProvider(
    std::shared_ptr<const ZRMEnvironmentDataImpl> enviromentData,
    std::shared_ptr<const ZRMEventPermissionChecker> permissionsChecker, ZRMDate eventDate,
    std::shared_ptr<const ZRMServerTimeProvider> serverTimeProvider)
    : environmentData_(std::move(enviromentData)),
      permissionsChecker_(std::move(permissionsChecker)),
      eventDate_(eventDate),
      serverTimeProvider_(std::move(serverTimeProvider)) {}

ZRMDictionary ZRMCommonParametersProvider::parametersWithStructVersion(
    std::uint64_t structVersion, ZRMEventPermissions eventPermissions) const {
    const ZRMCommonParameters parameters{environmentData_, eventDate_, structVersion,
                                         serverDate(serverTimeProvider_.get()),
                                         permissionStates(*permissionsChecker_, eventPermissions)};
    return zrm_eventBody(parameters, ZRMCommonParameters::fields());
}
