#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMCallInfoEventPolicy+Json.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMSettingsTexts.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMSettingsKeys.h"

std::optional<ZRMCallInfoEventPolicy> ZRMCallInfoEventPolicyJson::eventPolicyFromJson(
    const ZRMDictionary& document) {
    if (!zrm_hasSettingsText(document, kZRMiOSCallActiveStateCheckCountKey) ||
        !zrm_hasSettingsText(document, kZRMiOSCallActiveStateCheckIntervalKey)) {
        return std::nullopt;
    }
    return ZRMCallInfoEventPolicy(
        zrm_settingsCount(document, kZRMiOSCallActiveStateCheckCountKey),
        zrm_settingsDuration(document, kZRMiOSCallActiveStateCheckIntervalKey));
}

void ZRMCallInfoEventPolicyJson::jsonFromEventPolicy(const ZRMCallInfoEventPolicy& policy,
                                                     ZRMDictionary& document) {
    document[kZRMiOSCallActiveStateCheckCountKey] = std::to_string(policy.activeStateCheckCount());
    document[kZRMiOSCallActiveStateCheckIntervalKey] =
        zrm_settingsTextOfDuration(policy.activeStateCheckInterval());
}
