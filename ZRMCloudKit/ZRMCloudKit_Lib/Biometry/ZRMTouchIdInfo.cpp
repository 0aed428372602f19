#include "ZRMCloudKit/ZRMCloudKit_Lib/Biometry/ZRMTouchIdInfo.h"

#include <functional>
#include <string_view>
#include <utility>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMArchiveReading.h"

namespace {

constexpr const char* kClassName = "ZRMTouchIdInfo";
constexpr const char* kSupportedKey = "isSupported";
constexpr const char* kEnabledKey = "isEnabled";
constexpr const char* kDomainStateKey = "domainState";

}  // namespace

ZRMTouchIdInfo::ZRMTouchIdInfo(bool supported, bool enabled, std::optional<ZRMData> domainState)
    : supported_(supported), enabled_(enabled), domainState_(std::move(domainState)) {}

ZRMTouchIdInfo ZRMTouchIdInfo::currentTouchIdInfo(
    const ZRMLocalAuthentication& localAuthentication) {
    auto evaluation = localAuthentication.evaluateBiometrics();
    if (evaluation.canEvaluate) {
        return {true, true, std::move(evaluation.domainState)};
    }
    const auto& error = evaluation.error;
    const bool supported = error && error->domain() == kZRMLocalAuthenticationErrorDomain &&
                           error->code() != ZRMLocalAuthenticationErrorBiometryNotAvailable;
    return {supported, false, std::nullopt};
}

ZRMArchiveObject ZRMTouchIdInfo::encode() const {
    ZRMArchiveObject object{kClassName, {{kSupportedKey, supported_}, {kEnabledKey, enabled_}}};
    if (domainState_) {
        object.fields[kDomainStateKey] = *domainState_;
    }
    return object;
}

std::optional<ZRMTouchIdInfo> ZRMTouchIdInfo::decode(const ZRMArchiveObject& object) {
    std::optional<bool> supported;
    std::optional<bool> enabled;
    std::optional<ZRMData> domainState;
    if (object.className != kClassName ||
        !zrm_readArchiveField(object.fields, kSupportedKey, supported) ||
        !zrm_readArchiveField(object.fields, kEnabledKey, enabled) ||
        !zrm_readArchiveField(object.fields, kDomainStateKey, domainState)) {
        return {};
    }
    return ZRMTouchIdInfo(supported.value_or(false), enabled.value_or(false),
                          std::move(domainState));
}

std::size_t ZRMTouchIdInfo::hash() const {
    const auto bytes = domainState_.value_or(ZRMData());
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return std::hash<bool>()(supported_) ^ std::hash<bool>()(enabled_) ^
           std::hash<std::string_view>()(text);
}
