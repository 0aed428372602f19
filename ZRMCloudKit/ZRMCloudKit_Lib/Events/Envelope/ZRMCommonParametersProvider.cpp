#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Envelope/ZRMCommonParametersProvider.h"

#include <optional>
#include <utility>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Categories/NSString/NSString+ZRMCloudKit.h"

namespace {

void setIfPresent(ZRMDictionary& parameters, const char* key, std::optional<std::string> text) {
    if (text) {
        parameters[key] = std::move(*text);
    }
}

// Whole seconds: the milliseconds are dropped.
std::optional<ZRMDate> serverDate(const ZRMServerTimeProvider* provider) {
    if (provider == nullptr || !provider->isValid()) {
        return {};
    }
    return ZRMDate{static_cast<double>(provider->getTime() / 1000)};
}

}  // namespace

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
    ZRMDictionary parameters;
    parameters["environmentData"] = environmentData_->dictionary();
    setIfPresent(parameters, "eventDateTime", zrm_stringFromDate(eventDate_));
    parameters["structVersion"] = structVersion;
    setIfPresent(parameters, "serverEventDateTime",
                 zrm_stringFromDate(serverDate(serverTimeProvider_.get())));
    if (eventPermissions != kZRMEventPermissionNone) {
        ZRMDictionary permissions;
        if ((eventPermissions & kZRMEventPermissionLocation) != 0) {
            permissions["location"] =
                permissionsChecker_->isPermissionGranted(kZRMEventPermissionLocation);
        }
        parameters["permissions"] = std::move(permissions);
    }
    return parameters;
}
