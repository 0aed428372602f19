#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMMobileServiceSettings.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMSettingsKeys.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMSettingsTable.h"

namespace {

using Settings = ZRMMobileServiceSettings;

ZRMDictionary defaultDocument() {
    return Settings::jsonFromSettings(Settings::defaultSettings());
}

Settings readWith(const char* key, const char* text) {
    auto document = defaultDocument();
    document[key] = text;
    return Settings::settingsFromJson(document);
}

std::string reasonOfReading(const ZRMDictionary& document) {
    try {
        static_cast<void>(Settings::settingsFromJson(document));
    } catch (const ZRMInvalidArgument& exception) {
        return exception.what();
    }
    return "no exception";
}

struct SwitchCase {
    const char* name;
    const char* key;
    bool isDisabledByDefault;
    bool (ZRMEventSettings::*isDisabled)() const;
    void (ZRMEventSettings::*enable)();
    void (ZRMEventSettings::*disable)();
};

#define ZRM_SWITCH_CASE(NAME, KEY, DEFAULT)                                                 \
    SwitchCase {                                                                            \
#NAME, KEY, DEFAULT, &ZRMEventSettings::is##NAME##EventDisabled,                    \
            &ZRMEventSettings::enable##NAME##Event, &ZRMEventSettings::disable##NAME##Event \
    }

const std::vector<SwitchCase> kSwitches = {
    ZRM_SWITCH_CASE(TouchIdChanged, "touchIdChangedEventDisabled", false),
    ZRM_SWITCH_CASE(ApplicationInfo, "applicationInfoEventDisabled", false),
    ZRM_SWITCH_CASE(Fingerprint, "iosFingerprintEventDisabled", false),
    ZRM_SWITCH_CASE(Coordinates, "iosGeoLocationEventDisabled", false),
    ZRM_SWITCH_CASE(DeviceJailbreak, "deviceJailbreakEventDisabled", false),
    ZRM_SWITCH_CASE(ApplicationSignature, "iosApplicationSignatureEventDisabled", true),
    ZRM_SWITCH_CASE(LogData, "logDataEventDisabled", true),
    ZRM_SWITCH_CASE(Config, "configEventDisabled", true),
    ZRM_SWITCH_CASE(ScreenRecording, "screenRecordingEventDisabled", false),
    ZRM_SWITCH_CASE(CallInfo, "iosCallInfoEventDisabled", false),
    ZRM_SWITCH_CASE(Vpn, "vpnEventDisabled", false),
    ZRM_SWITCH_CASE(UserLogin, "userLoginEventDisabled", false),
    ZRM_SWITCH_CASE(UserLogout, "userLogoutEventDisabled", false),
    ZRM_SWITCH_CASE(SessionId, "sessionIdEventDisabled", false),
    ZRM_SWITCH_CASE(UiNavigation, "uiNavigationEventDisabled", true),
    ZRM_SWITCH_CASE(Screenshot, "iosScreenshotEventDisabled", false),
};

#undef ZRM_SWITCH_CASE

class ZRMEventSwitch : public testing::TestWithParam<SwitchCase> {};

std::string nameOf(const testing::TestParamInfo<SwitchCase>& info) {
    return info.param.name;
}

}  // namespace

TEST_P(ZRMEventSwitch, HasItsKeyAndDefault) {
    const auto& row = GetParam();
    EXPECT_EQ((Settings::defaultSettings().events().*row.isDisabled)(), row.isDisabledByDefault);
    EXPECT_EQ(defaultDocument().at(row.key), row.isDisabledByDefault ? "true" : "false");
}

TEST_P(ZRMEventSwitch, IsEnabledAndDisabledAlone) {
    const auto& row = GetParam();
    ZRMEventSettings events;
    EXPECT_FALSE((events.*row.isDisabled)());
    (events.*row.disable)();
    EXPECT_TRUE((events.*row.isDisabled)());
    for (const auto& other : kSwitches) {
        EXPECT_EQ((events.*other.isDisabled)(), std::string(other.name) == row.name);
    }
    (events.*row.enable)();
    EXPECT_EQ(events, ZRMEventSettings());
}

TEST_P(ZRMEventSwitch, IsReadFromItsKeyAlone) {
    const auto& row = GetParam();
    const auto enabled = readWith(row.key, "false");
    const auto disabled = readWith(row.key, "true");
    for (const auto& other : kSwitches) {
        if (std::string(other.name) != row.name) {
            EXPECT_EQ((enabled.events().*other.isDisabled)(), other.isDisabledByDefault);
            EXPECT_EQ((disabled.events().*other.isDisabled)(), other.isDisabledByDefault);
        }
    }
    EXPECT_FALSE((enabled.events().*row.isDisabled)());
    EXPECT_TRUE((disabled.events().*row.isDisabled)());
}

TEST_P(ZRMEventSwitch, MissingOrEmptyIsAnException) {
    const auto& row = GetParam();
    auto document = defaultDocument();
    document[row.key] = "";
    EXPECT_EQ(reasonOfReading(document), std::string("Parameter is nil: ") + row.key);
    document.erase(row.key);
    EXPECT_EQ(reasonOfReading(document), std::string("Parameter is nil: ") + row.key);
}

INSTANTIATE_TEST_SUITE_P(All, ZRMEventSwitch, testing::ValuesIn(kSwitches), nameOf);

TEST(ZRMMobileServiceSettings, OnlyFalseAndZeroInAnyLetterCaseEnableAnEvent) {
    for (const auto* text : {"false", "False", "FALSE", "fAlSe", "0"}) {
        EXPECT_FALSE(readWith(kZRMVpnEventDisabledKey, text).events().isVpnEventDisabled()) << text;
    }
    for (const auto* text :
         {"true", "TRUE", "yes", "1", "no", "false ", " false", "00", "0.0", "off"}) {
        EXPECT_TRUE(readWith(kZRMVpnEventDisabledKey, text).events().isVpnEventDisabled()) << text;
    }
}

TEST(ZRMMobileServiceSettings, DefaultsHoldWhatTheBuildAndTheTableSay) {
    const auto settings = Settings::defaultSettings();
    EXPECT_EQ(settings.ids().clientId(), kZRMClientId);
    EXPECT_EQ(settings.urls().settingsUpdateUrl(), kZRMConfigUpdateUrl);
    EXPECT_EQ(settings.urls().defaultStatisticsUrl(), kZRMStatisticsUrl);
    EXPECT_EQ(settings.urls().secureDeviceTagUrl(), kZRMSecureDeviceTagUrl);
    EXPECT_EQ(settings.urls().customStatisticsUrl(), std::nullopt);
    EXPECT_EQ(settings.timeIntervals().settingsUpdateInterval(), 86400);
    EXPECT_EQ(settings.timeIntervals().execSessionTimeout(), 1800);
    EXPECT_EQ(settings.events().screenRecordingEventPolicy(), ZRMScreenRecordingEventPolicy(1, 60));
    EXPECT_EQ(settings.events().callInfoEventPolicy(), ZRMCallInfoEventPolicy(1, 120));
    EXPECT_FALSE(settings.logger().writeLogsToFile());
    EXPECT_FALSE(settings.logger().keepLogsInFile());
    EXPECT_EQ(settings.logger().logFileKeepInterval(), 604800);
}

TEST(ZRMMobileServiceSettings, DefaultEndpointsHaveTheToldPaths) {
    const auto urls = Settings::defaultSettings().urls();
    EXPECT_THAT(urls.settingsUpdateUrl(), testing::EndsWith("/config/v1"));
    EXPECT_THAT(urls.statisticsUrl(), testing::EndsWith("/stat"));
    EXPECT_THAT(urls.secureDeviceTagUrl(), testing::EndsWith("/zwjsqd"));
}

TEST(ZRMMobileServiceSettings, DefaultsAreWrittenWithEveryKeyAsText) {
    const std::map<std::string, std::string> expected = {
        {"clientId", kZRMClientId},
        {"customizedClientId", kZRMClientId},
        {"configUpdateUrl", kZRMConfigUpdateUrl},
        {"configUpdateInterval", "P1D"},
        {"statisticsUrl", kZRMStatisticsUrl},
        {"mobileUuid", kZRMSecureDeviceTagUrl},
        {"execSessionTimeout", "PT30M"},
        {"touchIdChangedEventDisabled", "false"},
        {"applicationInfoEventDisabled", "false"},
        {"iosFingerprintEventDisabled", "false"},
        {"iosGeoLocationEventDisabled", "false"},
        {"deviceJailbreakEventDisabled", "false"},
        {"iosApplicationSignatureEventDisabled", "true"},
        {"logDataEventDisabled", "true"},
        {"configEventDisabled", "true"},
        {"screenRecordingEventDisabled", "false"},
        {"iosCallInfoEventDisabled", "false"},
        {"vpnEventDisabled", "false"},
        {"userLoginEventDisabled", "false"},
        {"userLogoutEventDisabled", "false"},
        {"sessionIdEventDisabled", "false"},
        {"uiNavigationEventDisabled", "true"},
        {"iosScreenshotEventDisabled", "false"},
        {"screenRecordingEventRetryAttempts", "1"},
        {"screenRecordingEventRetryInterval", "PT1M"},
        {"iosCallActiveStateCheckCount", "1"},
        {"iosCallActiveStateCheckInterval", "PT2M"},
        {"writeLogsToFile", "false"},
        {"keepLogsInFile", "false"},
        {"logFileKeepInterval", "P7D"},
    };
    std::map<std::string, std::string> written;
    for (const auto& [key, value] : defaultDocument()) {
        ASSERT_TRUE(value.is_string()) << key;
        written[std::string(key)] = value.get_string().c_str();
    }
    EXPECT_EQ(written, expected);
}

TEST(ZRMMobileServiceSettings, TableHasEveryWrittenKeyOnceAndNothingElse) {
    std::set<std::string> keys;
    for (const auto& field : zrm_settingsTable()) {
        EXPECT_TRUE(keys.insert(field.key).second) << field.key;
    }
    std::set<std::string> written;
    for (const auto& member : defaultDocument()) {
        written.insert(std::string(member.key()));
    }
    EXPECT_EQ(keys, written);
}

TEST(ZRMMobileServiceSettings, TableIsInTheOrderOfReading) {
    std::vector<std::string> keys;
    for (const auto& field : zrm_settingsTable()) {
        if (field.kind != ZRMSettingsKind::DerivedIdentifier) {
            keys.emplace_back(field.key);
        }
    }
    std::vector<std::string> expected = {"configUpdateUrl", "configUpdateInterval",
                                         "clientId",        "execSessionTimeout",
                                         "statisticsUrl",   "mobileUuid"};
    for (const auto& row : kSwitches) {
        expected.emplace_back(row.key);
    }
    for (const auto* key :
         {"screenRecordingEventRetryAttempts", "screenRecordingEventRetryInterval",
          "iosCallActiveStateCheckCount", "iosCallActiveStateCheckInterval", "writeLogsToFile",
          "keepLogsInFile", "logFileKeepInterval"}) {
        expected.emplace_back(key);
    }
    EXPECT_EQ(keys, expected);
}

TEST(ZRMMobileServiceSettings, FirstMissingEntryInOrderOfReadingIsNamed) {
    auto document = defaultDocument();
    for (const auto& field : zrm_settingsTable()) {
        const bool isOptional =
            std::string(field.key).find("ctiveStateCheck") != std::string::npos ||
            std::string(field.key).find("EventRetry") != std::string::npos || field.read == nullptr;
        if (!isOptional) {
            auto withoutIt = document;
            withoutIt.erase(field.key);
            // What is read later is missing as well.
            withoutIt.erase("logFileKeepInterval");
            EXPECT_EQ(reasonOfReading(withoutIt), std::string("Parameter is nil: ") + field.key);
        }
    }
    EXPECT_EQ(reasonOfReading({}), "Parameter is nil: configUpdateUrl");
}

TEST(ZRMMobileServiceSettings, EmptyUrlDurationIdentifierAndBooleanAreExceptions) {
    for (const auto* key : {"configUpdateUrl", "statisticsUrl", "mobileUuid",
                            "configUpdateInterval", "execSessionTimeout", "logFileKeepInterval",
                            "clientId", "writeLogsToFile", "keepLogsInFile"}) {
        auto document = defaultDocument();
        document[key] = "";
        EXPECT_EQ(reasonOfReading(document), std::string("Parameter is nil: ") + key);
    }
}

TEST(ZRMMobileServiceSettings, TextThatIsNoUrlIsAnException) {
    for (const auto* key : {"configUpdateUrl", "statisticsUrl", "mobileUuid"}) {
        auto document = defaultDocument();
        document[key] = "http://a b";
        EXPECT_EQ(reasonOfReading(document), std::string("Parameter is nil: ") + key);
    }
}

TEST(ZRMMobileServiceSettings, EntryOfAnotherTypeCountsAsMissing) {
    auto document = defaultDocument();
    document["vpnEventDisabled"] = true;
    EXPECT_EQ(reasonOfReading(document), "Parameter is nil: vpnEventDisabled");
    document = defaultDocument();
    document["iosCallActiveStateCheckCount"] = 3;
    EXPECT_EQ(Settings::settingsFromJson(document).events().callInfoEventPolicy(), std::nullopt);
}

TEST(ZRMMobileServiceSettings, ExceptionCarriesReasonAndUserInfo) {
    const auto exception = Settings::makeExceptionForKey("vpn", {{"a", 1}});
    EXPECT_STREQ(exception.what(), "Parameter is nil: vpn");
    EXPECT_EQ(exception.userInfo(), (ZRMDictionary{{"a", 1}}));
    EXPECT_TRUE(Settings::makeExceptionForKey("vpn").userInfo().empty());
}

TEST(ZRMMobileServiceSettings, DurationsAreReadAsSeconds) {
    EXPECT_EQ(readWith("configUpdateInterval", "PT2H").timeIntervals().settingsUpdateInterval(),
              7200);
    EXPECT_EQ(readWith("execSessionTimeout", "P1DT1H1M1S").timeIntervals().execSessionTimeout(),
              90061);
    EXPECT_EQ(readWith("logFileKeepInterval", "PT5S").logger().logFileKeepInterval(), 5);
}

TEST(ZRMMobileServiceSettings, TextThatIsNoDurationIsMinusOne) {
    EXPECT_EQ(readWith("execSessionTimeout", "soon").timeIntervals().execSessionTimeout(), -1);
}

TEST(ZRMMobileServiceSettings, LoggerBooleansAreReadByTheRuleOfBooleans) {
    EXPECT_TRUE(readWith("writeLogsToFile", "true").logger().writeLogsToFile());
    EXPECT_TRUE(readWith("keepLogsInFile", "yes").logger().keepLogsInFile());
    EXPECT_FALSE(readWith("writeLogsToFile", "0").logger().writeLogsToFile());
    EXPECT_FALSE(readWith("keepLogsInFile", "FALSE").logger().keepLogsInFile());
}

TEST(ZRMMobileServiceSettings, PoliciesAreReadFromTheirTwoKeys) {
    auto document = defaultDocument();
    document["screenRecordingEventRetryAttempts"] = "7";
    document["screenRecordingEventRetryInterval"] = "PT30S";
    document["iosCallActiveStateCheckCount"] = "0";
    document["iosCallActiveStateCheckInterval"] = "PT1H";
    const auto events = Settings::settingsFromJson(document).events();
    EXPECT_EQ(events.screenRecordingEventPolicy(), ZRMScreenRecordingEventPolicy(7, 30));
    EXPECT_EQ(events.callInfoEventPolicy(), ZRMCallInfoEventPolicy(0, 3600));
}

TEST(ZRMMobileServiceSettings, MissingOrEmptyPolicyKeyMeansNoPolicyAndNoException) {
    for (const auto* key :
         {"screenRecordingEventRetryAttempts", "screenRecordingEventRetryInterval"}) {
        auto document = defaultDocument();
        document[key] = "";
        EXPECT_EQ(Settings::settingsFromJson(document).events().screenRecordingEventPolicy(),
                  std::nullopt);
        document.erase(key);
        const auto settings = Settings::settingsFromJson(document);
        EXPECT_EQ(settings.events().screenRecordingEventPolicy(), std::nullopt);
        EXPECT_TRUE(settings.events().callInfoEventPolicy().has_value());
    }
    for (const auto* key : {"iosCallActiveStateCheckCount", "iosCallActiveStateCheckInterval"}) {
        auto document = defaultDocument();
        document[key] = "";
        EXPECT_EQ(Settings::settingsFromJson(document).events().callInfoEventPolicy(),
                  std::nullopt);
        document.erase(key);
        const auto settings = Settings::settingsFromJson(document);
        EXPECT_EQ(settings.events().callInfoEventPolicy(), std::nullopt);
        EXPECT_TRUE(settings.events().screenRecordingEventPolicy().has_value());
    }
}

TEST(ZRMMobileServiceSettings, AbsentPolicyIsNotWritten) {
    auto settings = Settings::defaultSettings();
    settings.events().setScreenRecordingEventPolicy(std::nullopt);
    settings.events().setCallInfoEventPolicy(std::nullopt);
    const auto document = Settings::jsonFromSettings(settings);
    EXPECT_FALSE(document.contains("screenRecordingEventRetryAttempts"));
    EXPECT_FALSE(document.contains("screenRecordingEventRetryInterval"));
    EXPECT_FALSE(document.contains("iosCallActiveStateCheckCount"));
    EXPECT_FALSE(document.contains("iosCallActiveStateCheckInterval"));
    EXPECT_EQ(Settings::settingsFromJson(document), settings);
}

TEST(ZRMMobileServiceSettings, CountIsTheNumberTheTextBeginsWith) {
    const auto countOf = [](const char* text) {
        return readWith("iosCallActiveStateCheckCount", text)
            .events()
            .callInfoEventPolicy()
            ->activeStateCheckCount();
    };
    EXPECT_EQ(countOf("12"), 12u);
    EXPECT_EQ(countOf("+12"), 12u);
    EXPECT_EQ(countOf(" 12 times"), 12u);
    EXPECT_EQ(countOf("3.9"), 3u);
    EXPECT_EQ(countOf("many"), 0u);
    EXPECT_EQ(countOf(" "), 0u);
    EXPECT_EQ(countOf("+"), 0u);
    EXPECT_EQ(countOf("-1"), 0u);
    EXPECT_EQ(countOf("-99999999999999999999"), 0u);
    EXPECT_EQ(countOf("99999999999999999999"), 9223372036854775807u);
}

TEST(ZRMMobileServiceSettings, WrittenSettingsReadBackEqual) {
    auto settings = Settings::defaultSettings();
    settings.urls().setDefaultStatisticsUrl("https://a.example.com/s");
    settings.urls().setSettingsUpdateUrl("https://b.example.com/c");
    settings.urls().setSecureDeviceTagUrl("https://c.example.com/t");
    settings.timeIntervals() = ZRMTimeIntervalSettings(90061, 5);
    settings.ids() = ZRMIdsSettings("bank");
    settings.logger() = ZRMLoggerSettings(true, true, 59);
    settings.events().disableVpnEvent();
    settings.events().enableUiNavigationEvent();
    settings.events().setScreenRecordingEventPolicy(ZRMScreenRecordingEventPolicy(9, 3600));
    settings.events().setCallInfoEventPolicy(ZRMCallInfoEventPolicy(0, 61));
    EXPECT_EQ(Settings::settingsFromJson(Settings::jsonFromSettings(settings)), settings);
}

TEST(ZRMMobileServiceSettings, CustomStatisticsUrlIsWrittenAndComesBackAsTheDefault) {
    auto settings = Settings::defaultSettings();
    settings.urls().setCustomStatisticsUrl("https://own.example.com/stat?cid=own");
    const auto document = Settings::jsonFromSettings(settings);
    EXPECT_EQ(document.at("statisticsUrl"), "https://own.example.com/stat?cid=own");
    EXPECT_EQ(document.at("clientId"), kZRMClientId);
    EXPECT_EQ(document.at("customizedClientId"), "own");
    const auto read = Settings::settingsFromJson(document);
    EXPECT_EQ(read.urls().defaultStatisticsUrl(), "https://own.example.com/stat?cid=own");
    EXPECT_EQ(read.urls().customStatisticsUrl(), std::nullopt);
}

TEST(ZRMMobileServiceSettings, CustomizedClientIdIsNeverRead) {
    const auto settings = readWith("customizedClientId", "someone");
    EXPECT_EQ(settings.customizedClientId(), kZRMClientId);
    EXPECT_EQ(settings.ids().clientId(), kZRMClientId);
}

TEST(ZRMMobileServiceSettings, StatisticsUrlIsTheCustomOneWhereThereIsOne) {
    ZRMUrlSettings urls("https://d.example.com", "https://u.example.com", "https://t.example.com");
    EXPECT_EQ(urls.statisticsUrl(), "https://d.example.com");
    urls.setCustomStatisticsUrl("https://c.example.com");
    EXPECT_EQ(urls.statisticsUrl(), "https://c.example.com");
    EXPECT_EQ(urls.defaultStatisticsUrl(), "https://d.example.com");
    urls.setCustomStatisticsUrl(std::nullopt);
    EXPECT_EQ(urls.statisticsUrl(), "https://d.example.com");
}

TEST(ZRMMobileServiceSettings, ClientIdComesFromTheFirstCidItemOfTheStatisticsUrl) {
    struct Case {
        const char* url;
        std::optional<std::string> clientId;
    };
    for (const auto& row : {
             Case{"https://a.example.com/stat", std::nullopt},
             Case{"https://a.example.com/stat?cid=one", "one"},
             Case{"https://a.example.com/stat?x=1&cid=one&cid=two", "one"},
             Case{"https://a.example.com/stat?cid=a%20b%2Bc+d", "a b+c+d"},
             Case{"https://a.example.com/stat?cid=", ""},
             Case{"https://a.example.com/stat?cid", std::nullopt},
             Case{"https://a.example.com/stat?CID=one", std::nullopt},
             Case{"https://a.example.com/stat#?cid=one", std::nullopt},
         }) {
        const auto settings = readWith("statisticsUrl", row.url);
        EXPECT_EQ(settings.getClientIdFromStatisticsUrl(), row.clientId) << row.url;
        EXPECT_EQ(settings.customizedClientId(), row.clientId.value_or(kZRMClientId)) << row.url;
    }
}

TEST(ZRMMobileServiceSettings, LocationIntervalIsNoEntryOfTheDocument) {
    EXPECT_STREQ(kZRMLocationDetectInterval, "PT2H");
    EXPECT_STREQ(kZRMSettingsConfigKey, "config");
}
