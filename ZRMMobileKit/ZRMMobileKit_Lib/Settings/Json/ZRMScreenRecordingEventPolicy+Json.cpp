#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMScreenRecordingEventPolicy+Json.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMSettingsTexts.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMSettingsKeys.h"

std::optional<ZRMScreenRecordingEventPolicy> ZRMScreenRecordingEventPolicyJson::eventPolicyFromJson(
    const ZRMDictionary& document) {
    if (!zrm_hasSettingsText(document, kZRMScreenRecordingEventRetryAttemptsKey) ||
        !zrm_hasSettingsText(document, kZRMScreenRecordingEventRetryIntervalKey)) {
        return std::nullopt;
    }
    return ZRMScreenRecordingEventPolicy(
        zrm_settingsCount(document, kZRMScreenRecordingEventRetryAttemptsKey),
        zrm_settingsDuration(document, kZRMScreenRecordingEventRetryIntervalKey));
}

void ZRMScreenRecordingEventPolicyJson::jsonFromEventPolicy(
    const ZRMScreenRecordingEventPolicy& policy, ZRMDictionary& document) {
    document[kZRMScreenRecordingEventRetryAttemptsKey] =
        std::to_string(policy.numberOfRetryAttempts());
    document[kZRMScreenRecordingEventRetryIntervalKey] =
        zrm_settingsTextOfDuration(policy.retryInterval());
}
