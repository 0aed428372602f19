#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMSettingsTable.h"

#include <array>

#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMCallInfoEventPolicy+Json.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMScreenRecordingEventPolicy+Json.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMSettingsTexts.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMSettingsKeys.h"

namespace {

using Settings = ZRMMobileServiceSettings;
using Document = ZRMDictionary;
using Kind = ZRMSettingsKind;
using Rule = ZRMSettingsRule;

// One accessor names its section, its getter and its setter.
template <class Section, class Value, class Argument>
struct Accessor {
    Section& (Settings::*section)();
    const Section& (Settings::*constSection)() const;
    Value (Section::*get)() const;
    void (Section::*set)(Argument);
};

constexpr Accessor<ZRMUrlSettings, const std::string&, std::string> url(
    const std::string& (ZRMUrlSettings::*get)() const, void (ZRMUrlSettings::*set)(std::string)) {
    return {&Settings::urls, &Settings::urls, get, set};
}

constexpr Accessor<ZRMTimeIntervalSettings, double, double> interval(
    double (ZRMTimeIntervalSettings::*get)() const, void (ZRMTimeIntervalSettings::*set)(double)) {
    return {&Settings::timeIntervals, &Settings::timeIntervals, get, set};
}

template <class Value>
constexpr Accessor<ZRMLoggerSettings, Value, Value> logger(Value (ZRMLoggerSettings::*get)() const,
                                                           void (ZRMLoggerSettings::*set)(Value)) {
    return {&Settings::logger, &Settings::logger, get, set};
}

template <auto accessor>
constexpr ZRMSettingsField urlField(const char* key, const char* defaultText, const char* meaning) {
    return {key,
            Kind::Url,
            Rule::HttpUrl,
            defaultText,
            meaning,
            [](Settings& settings, const Document& document, const char* aKey) {
                ((settings.*accessor.section)().*accessor.set)(zrm_settingsUrl(document, aKey));
            },
            [](const Settings& settings, Document& document, const char* aKey) {
                document[aKey] = ((settings.*accessor.constSection)().*accessor.get)();
            }};
}

template <auto accessor>
constexpr ZRMSettingsField durationField(const char* key, const char* defaultText,
                                         const char* meaning) {
    return {
        key,
        Kind::Duration,
        Rule::ISO8601Duration,
        defaultText,
        meaning,
        [](Settings& settings, const Document& document, const char* aKey) {
            ((settings.*accessor.section)().*accessor.set)(zrm_settingsDuration(document, aKey));
        },
        [](const Settings& settings, Document& document, const char* aKey) {
            document[aKey] =
                zrm_settingsTextOfDuration(((settings.*accessor.constSection)().*accessor.get)());
        }};
}

template <auto accessor>
constexpr ZRMSettingsField booleanField(const char* key, bool defaultValue, const char* meaning) {
    return {key,
            Kind::Boolean,
            Rule::NonEmptyText,
            zrm_settingsTextOfBoolean(defaultValue),
            meaning,
            [](Settings& settings, const Document& document, const char* aKey) {
                ((settings.*accessor.section)().*accessor.set)(zrm_settingsBoolean(document, aKey));
            },
            [](const Settings& settings, Document& document, const char* aKey) {
                document[aKey] = zrm_settingsTextOfBoolean(
                    ((settings.*accessor.constSection)().*accessor.get)());
            }};
}

template <ZRMSwitchedEvent event>
constexpr ZRMSettingsField flag(const char* key, bool isDisabled, const char* meaning) {
    return {key,
            Kind::EventSwitch,
            Rule::NonEmptyText,
            zrm_settingsTextOfBoolean(isDisabled),
            meaning,
            [](Settings& settings, const Document& document, const char* aKey) {
                settings.events().setDisabled(event, zrm_settingsBoolean(document, aKey));
            },
            [](const Settings& settings, Document& document, const char* aKey) {
                document[aKey] = zrm_settingsTextOfBoolean(settings.events().isDisabled(event));
            }};
}

constexpr ZRMSettingsField kTable[] = {
    urlField<url(&ZRMUrlSettings::settingsUpdateUrl, &ZRMUrlSettings::setSettingsUpdateUrl)>(
        kZRMSettingsConfigUpdateUrlKey, kZRMConfigUpdateUrl,
        "where the settings document is fetched"),
    durationField<interval(&ZRMTimeIntervalSettings::settingsUpdateInterval,
                           &ZRMTimeIntervalSettings::setSettingsUpdateInterval)>(
        kZRMSettingsConfigUpdateIntervalKey, kZRMConfigUpdateInterval,
        "time between two downloads of the settings"),
    {kZRMSettingsClientId, Kind::Identifier, Rule::NeverTaken, kZRMClientId, "customer identifier",
     [](Settings& settings, const Document& document, const char* key) {
         settings.ids().setClientId(zrm_settingsText(document, key));
     },
     [](const Settings& settings, Document& document, const char* key) {
         document[key] = settings.ids().clientId();
     }},
    {kZRMSettingsCustomizedClientId, Kind::DerivedIdentifier, Rule::NeverTaken, nullptr,
     "customer identifier in force: the \"cid\" of the statistics URL, else the one above", nullptr,
     [](const Settings& settings, Document& document, const char* key) {
         document[key] = settings.customizedClientId();
     }},
    durationField<interval(&ZRMTimeIntervalSettings::execSessionTimeout,
                           &ZRMTimeIntervalSettings::setExecSessionTimeout)>(
        kZRMExecSessionTimeoutKey, kZRMExecSessionTimeout,
        "time without a start of the library that ends an execution session"),
    // A host's own URL is written here and comes back as the document's.
    urlField<Accessor<ZRMUrlSettings, const std::string&, std::string>{
        &Settings::urls, &Settings::urls, &ZRMUrlSettings::statisticsUrl,
        &ZRMUrlSettings::setDefaultStatisticsUrl}>(kZRMSettingsStatisticsUrlKey, kZRMStatisticsUrl,
                                                   "where events are uploaded"),
    urlField<url(&ZRMUrlSettings::secureDeviceTagUrl, &ZRMUrlSettings::setSecureDeviceTagUrl)>(
        kZRMSecureDeviceTagUrlKey, kZRMSecureDeviceTagUrl, "where the device tag is fetched"),
    flag<ZRMSwitchedEvent::TouchIdChanged>(kZRMTouchIdChangedEventDisabledKey,
                                           kZRMTouchIdChangedEventDisabled,
                                           "biometry state change"),
    flag<ZRMSwitchedEvent::ApplicationInfo>(kZRMApplicationInfoEventDisabledKey,
                                            kZRMApplicationInfoEventDisabled,
                                            "application information (bundle hash)"),
    flag<ZRMSwitchedEvent::Fingerprint>(kZRMiOSFingerprintEventDisabledKey,
                                        kZRMiOSFingerprintEventDisabled, "device fingerprint"),
    flag<ZRMSwitchedEvent::Coordinates>(kZRMiOSGeoLocationEventDisabledKey,
                                        kZRMiOSGeoLocationEventDisabled, "geolocation"),
    flag<ZRMSwitchedEvent::DeviceJailbreak>(kZRMDeviceJailbreakEventDisabledKey,
                                            kZRMDeviceJailbreakEventDisabled,
                                            "jailbreak detection"),
    flag<ZRMSwitchedEvent::ApplicationSignature>(kZRMApplicationSignatureEventDisabledKey,
                                                 kZRMApplicationSignatureEventDisabled,
                                                 "code-signature hashes"),
    flag<ZRMSwitchedEvent::LogData>(kZRMLogDataEventDisabledKey, kZRMLogDataEventDisabled,
                                    "upload of the library's own log"),
    flag<ZRMSwitchedEvent::Config>(kZRMConfigEventDisabledKey, kZRMConfigEventDisabled,
                                   "report of the applied settings"),
    flag<ZRMSwitchedEvent::ScreenRecording>(kZRMScreenRecordingEventDisabledKey,
                                            kZRMScreenRecordingEventDisabled, "screen recording"),
    flag<ZRMSwitchedEvent::CallInfo>(kZRMiOSCallInfoEventDisabledKey, kZRMiOSCallInfoEventDisabled,
                                     "telephone calls"),
    flag<ZRMSwitchedEvent::Vpn>(kZRMVpnEventDisabledKey, kZRMVpnEventDisabled, "VPN"),
    flag<ZRMSwitchedEvent::UserLogin>(kZRMUserLoginEventDisabledKey, kZRMUserLoginEventDisabled,
                                      "login"),
    flag<ZRMSwitchedEvent::UserLogout>(kZRMUserLogoutEventDisabledKey, kZRMUserLogoutEventDisabled,
                                       "logout"),
    flag<ZRMSwitchedEvent::SessionId>(kZRMSessionIdEventDisabledKey, kZRMSessionIdEventDisabled,
                                      "session identifier"),
    flag<ZRMSwitchedEvent::UiNavigation>(kZRMUiNavigationEventDisabledKey,
                                         kZRMUiNavigationEventDisabled, "UI navigation"),
    flag<ZRMSwitchedEvent::Screenshot>(kZRMScreenshotEventDisabledKey, kZRMScreenshotEventDisabled,
                                       "screenshots"),
    // Each policy is read and written with its first entry.
    {kZRMScreenRecordingEventRetryAttemptsKey, Kind::Count, Rule::NonEmptyText,
     kZRMScreenRecordingEventRetryAttempts, "further checks while the screen is recorded",
     [](Settings& settings, const Document& document, const char* /*key*/) {
         settings.events().setScreenRecordingEventPolicy(
             ZRMScreenRecordingEventPolicyJson::eventPolicyFromJson(document));
     },
     [](const Settings& settings, Document& document, const char* /*key*/) {
         if (const auto& policy = settings.events().screenRecordingEventPolicy()) {
             ZRMScreenRecordingEventPolicyJson::jsonFromEventPolicy(*policy, document);
         }
     }},
    {kZRMScreenRecordingEventRetryIntervalKey, Kind::Duration, Rule::NonEmptyText,
     kZRMScreenRecordingEventRetryInterval, "time between two of these checks", nullptr, nullptr},
    {kZRMiOSCallActiveStateCheckCountKey, Kind::Count, Rule::NonEmptyText,
     kZRMCallActiveStateCheckCount,
     "checks whether a connected call is still active; 0 means without end",
     [](Settings& settings, const Document& document, const char* /*key*/) {
         settings.events().setCallInfoEventPolicy(
             ZRMCallInfoEventPolicyJson::eventPolicyFromJson(document));
     },
     [](const Settings& settings, Document& document, const char* /*key*/) {
         if (const auto& policy = settings.events().callInfoEventPolicy()) {
             ZRMCallInfoEventPolicyJson::jsonFromEventPolicy(*policy, document);
         }
     }},
    {kZRMiOSCallActiveStateCheckIntervalKey, Kind::Duration, Rule::NonEmptyText,
     kZRMCallActiveStateCheckInterval, "time between two of these checks", nullptr, nullptr},

    booleanField<logger<bool>(&ZRMLoggerSettings::writeLogsToFile,
                              &ZRMLoggerSettings::setWriteLogsToFile)>(
        kZRMWriteLogsToFileKey, kZRMWriteLogsToFile, "whether the library writes a trace file"),
    booleanField<logger<bool>(&ZRMLoggerSettings::keepLogsInFile,
                              &ZRMLoggerSettings::setKeepLogsInFile)>(
        kZRMKeepLogsInFileKey, kZRMKeepLogsInFile,
        "whether the lines of earlier runs stay in the trace file"),
    durationField<logger<double>(&ZRMLoggerSettings::logFileKeepInterval,
                                 &ZRMLoggerSettings::setLogFileKeepInterval)>(
        kZRMLogFileKeepIntervalKey, kZRMLogFileKeepInterval,
        "age at which a kept trace file is deleted"),
};

}  // namespace

std::span<const ZRMSettingsField> zrm_settingsTable() {
    return kTable;
}
