// The keys of the settings document and the values that hold until a document says otherwise.
#pragma once

#include "ZRMGenerated/ZRMMobileKitBuildSettings.h"

// Within the signed envelope the document stands under this key.
inline constexpr const char* kZRMSettingsConfigKey = "config";

inline constexpr const char* kZRMSettingsClientId = "clientId";
inline constexpr const char* kZRMSettingsCustomizedClientId = "customizedClientId";
inline constexpr const char* kZRMSettingsConfigUpdateUrlKey = "configUpdateUrl";
inline constexpr const char* kZRMSettingsConfigUpdateIntervalKey = "configUpdateInterval";
inline constexpr const char* kZRMSettingsStatisticsUrlKey = "statisticsUrl";
inline constexpr const char* kZRMSecureDeviceTagUrlKey = "mobileUuid";
inline constexpr const char* kZRMExecSessionTimeoutKey = "execSessionTimeout";

inline constexpr const char* kZRMTouchIdChangedEventDisabledKey = "touchIdChangedEventDisabled";
inline constexpr const char* kZRMApplicationInfoEventDisabledKey = "applicationInfoEventDisabled";
inline constexpr const char* kZRMiOSFingerprintEventDisabledKey = "iosFingerprintEventDisabled";
inline constexpr const char* kZRMiOSGeoLocationEventDisabledKey = "iosGeoLocationEventDisabled";
inline constexpr const char* kZRMDeviceJailbreakEventDisabledKey = "deviceJailbreakEventDisabled";
inline constexpr const char* kZRMApplicationSignatureEventDisabledKey =
    "iosApplicationSignatureEventDisabled";
inline constexpr const char* kZRMLogDataEventDisabledKey = "logDataEventDisabled";
inline constexpr const char* kZRMConfigEventDisabledKey = "configEventDisabled";
inline constexpr const char* kZRMScreenRecordingEventDisabledKey = "screenRecordingEventDisabled";
inline constexpr const char* kZRMiOSCallInfoEventDisabledKey = "iosCallInfoEventDisabled";
inline constexpr const char* kZRMVpnEventDisabledKey = "vpnEventDisabled";
inline constexpr const char* kZRMUserLoginEventDisabledKey = "userLoginEventDisabled";
inline constexpr const char* kZRMUserLogoutEventDisabledKey = "userLogoutEventDisabled";
inline constexpr const char* kZRMSessionIdEventDisabledKey = "sessionIdEventDisabled";
inline constexpr const char* kZRMUiNavigationEventDisabledKey = "uiNavigationEventDisabled";
inline constexpr const char* kZRMScreenshotEventDisabledKey = "iosScreenshotEventDisabled";

inline constexpr const char* kZRMScreenRecordingEventRetryAttemptsKey =
    "screenRecordingEventRetryAttempts";
inline constexpr const char* kZRMScreenRecordingEventRetryIntervalKey =
    "screenRecordingEventRetryInterval";
inline constexpr const char* kZRMiOSCallActiveStateCheckCountKey = "iosCallActiveStateCheckCount";
inline constexpr const char* kZRMiOSCallActiveStateCheckIntervalKey =
    "iosCallActiveStateCheckInterval";

inline constexpr const char* kZRMWriteLogsToFileKey = "writeLogsToFile";
inline constexpr const char* kZRMKeepLogsInFileKey = "keepLogsInFile";
inline constexpr const char* kZRMLogFileKeepIntervalKey = "logFileKeepInterval";

// Durations are ISO 8601 texts.
inline constexpr const char* kZRMConfigUpdateInterval = "P1D";
inline constexpr const char* kZRMExecSessionTimeout = "PT30M";

inline constexpr bool kZRMTouchIdChangedEventDisabled = false;
inline constexpr bool kZRMApplicationInfoEventDisabled = false;
inline constexpr bool kZRMiOSFingerprintEventDisabled = false;
inline constexpr bool kZRMiOSGeoLocationEventDisabled = false;
inline constexpr bool kZRMDeviceJailbreakEventDisabled = false;
inline constexpr bool kZRMApplicationSignatureEventDisabled = true;
inline constexpr bool kZRMLogDataEventDisabled = true;
inline constexpr bool kZRMConfigEventDisabled = true;
inline constexpr bool kZRMScreenRecordingEventDisabled = false;
inline constexpr bool kZRMiOSCallInfoEventDisabled = false;
inline constexpr bool kZRMVpnEventDisabled = false;
inline constexpr bool kZRMUserLoginEventDisabled = false;
inline constexpr bool kZRMUserLogoutEventDisabled = false;
inline constexpr bool kZRMSessionIdEventDisabled = false;
inline constexpr bool kZRMUiNavigationEventDisabled = true;
inline constexpr bool kZRMScreenshotEventDisabled = false;

inline constexpr const char* kZRMScreenRecordingEventRetryAttempts = "1";
inline constexpr const char* kZRMScreenRecordingEventRetryInterval = "PT1M";
inline constexpr const char* kZRMCallActiveStateCheckCount = "1";
inline constexpr const char* kZRMCallActiveStateCheckInterval = "PT2M";

inline constexpr bool kZRMWriteLogsToFile = false;
inline constexpr bool kZRMKeepLogsInFile = false;
inline constexpr const char* kZRMLogFileKeepInterval = "P7D";

// Not part of the document: how long a detected location counts as fresh.
inline constexpr const char* kZRMLocationDetectInterval = "PT2H";
