#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitSettingsValues.h"

#include <cmath>
#include <cstdint>
#include <memory>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMArchiveReading.h"

namespace {

constexpr const char* kSettingsClassName = "ZRMCloudKitSettings";
constexpr const char* kInstallationIdKey = "ZRMInstallationId";
constexpr const char* kInstallationDateKey = "ZRMInstallationDate";
constexpr const char* kMd5SendDateKey = "ZRMApplicationMd5StatisticsSendDate";
constexpr const char* kTouchIdDomainStateKey = "ZRMTouchIdDomainState";
constexpr const char* kSecureDeviceTagKey = "ZRMSecureDeviceTag";
constexpr const char* kRefreshDateKey = "ZRMSecureDeviceTagRefreshDate";
constexpr const char* kRefreshIntervalKey = "ZRMSecureDeviceTagRefreshInterval";

using Object = std::shared_ptr<const ZRMArchiveObject>;

bool readDate(const ZRMArchiveFields& fields, const char* key, ZRMDate& date) {
    std::optional<ZRMDate> read;
    if (!zrm_readArchiveField(fields, key, read)) {
        return false;
    }
    date = read.value_or(ZRMDate());
    return true;
}

bool readTouchId(const ZRMArchiveFields& fields, std::optional<ZRMTouchIdInfo>& state) {
    std::optional<Object> object;
    if (!zrm_readArchiveField(fields, kTouchIdDomainStateKey, object)) {
        return false;
    }
    if (object) {
        state = *object ? ZRMTouchIdInfo::decode(**object) : std::nullopt;
    }
    return !object || state;
}

// Beyond this a number of seconds is no interval any more.
constexpr double kLongestInterval = 9e15;

bool readWholeSeconds(const ZRMArchiveFields& fields, double& seconds) {
    std::optional<double> real;
    std::optional<std::int64_t> whole;
    if (zrm_readArchiveField(fields, kRefreshIntervalKey, real)) {
        const double read = real.value_or(0);
        seconds = std::abs(read) <= kLongestInterval ? std::trunc(read) : 0;
        return true;
    }
    if (zrm_readArchiveField(fields, kRefreshIntervalKey, whole)) {
        seconds = static_cast<double>(whole.value_or(0));
        return true;
    }
    return false;
}

}  // namespace

ZRMArchiveObject ZRMCloudKitSettingsValues::encode() const {
    ZRMArchiveObject object{kSettingsClassName, {}};
    if (installationId) {
        object.fields[kInstallationIdKey] = *installationId;
    }
    if (installationDate) {
        object.fields[kInstallationDateKey] = *installationDate;
    }
    object.fields[kMd5SendDateKey] = applicationMd5SendDate;
    if (touchIdDomainState) {
        object.fields[kTouchIdDomainStateKey] =
            std::make_shared<const ZRMArchiveObject>(touchIdDomainState->encode());
    }
    if (secureDeviceTag) {
        object.fields[kSecureDeviceTagKey] = *secureDeviceTag;
    }
    object.fields[kRefreshDateKey] = secureDeviceTagRefreshDate;
    object.fields[kRefreshIntervalKey] = secureDeviceTagRefreshInterval;
    return object;
}

std::optional<ZRMCloudKitSettingsValues> ZRMCloudKitSettingsValues::decode(
    const ZRMArchiveObject& object) {
    ZRMCloudKitSettingsValues values;
    const auto& fields = object.fields;
    const bool good = object.className == kSettingsClassName &&
                      zrm_readArchiveField(fields, kInstallationIdKey, values.installationId) &&
                      zrm_readArchiveField(fields, kInstallationDateKey, values.installationDate) &&
                      readDate(fields, kMd5SendDateKey, values.applicationMd5SendDate) &&
                      readTouchId(fields, values.touchIdDomainState) &&
                      zrm_readArchiveField(fields, kSecureDeviceTagKey, values.secureDeviceTag) &&
                      readDate(fields, kRefreshDateKey, values.secureDeviceTagRefreshDate) &&
                      readWholeSeconds(fields, values.secureDeviceTagRefreshInterval);
    return good ? std::optional(std::move(values)) : std::nullopt;
}
