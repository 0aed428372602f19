#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMMobileKit/ZRMMobileKitErrorCode.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMSettingsJsonValidator.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMMobileServiceSettings.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMSettingsKeys.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMSettingsTable.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kUrlKeys[] = {kZRMSettingsConfigUpdateUrlKey, kZRMSettingsStatisticsUrlKey,
                                    kZRMSecureDeviceTagUrlKey};
constexpr const char* kDurationKeys[] = {kZRMSettingsConfigUpdateIntervalKey,
                                         kZRMExecSessionTimeoutKey, kZRMLogFileKeepIntervalKey};
constexpr const char* kNonEmptyKeys[] = {"touchIdChangedEventDisabled",
                                         "applicationInfoEventDisabled",
                                         "iosFingerprintEventDisabled",
                                         "iosGeoLocationEventDisabled",
                                         "deviceJailbreakEventDisabled",
                                         "iosApplicationSignatureEventDisabled",
                                         "logDataEventDisabled",
                                         "configEventDisabled",
                                         "screenRecordingEventDisabled",
                                         "iosCallInfoEventDisabled",
                                         "vpnEventDisabled",
                                         "userLoginEventDisabled",
                                         "userLogoutEventDisabled",
                                         "sessionIdEventDisabled",
                                         "uiNavigationEventDisabled",
                                         "iosScreenshotEventDisabled",
                                         "screenRecordingEventRetryAttempts",
                                         "screenRecordingEventRetryInterval",
                                         "iosCallActiveStateCheckCount",
                                         "iosCallActiveStateCheckInterval",
                                         "writeLogsToFile",
                                         "keepLogsInFile"};

void expectCopied(const char* key, const ZRMJsonValue& value) {
    const ZRMDictionary json{{key, value}};
    std::optional<ZRMError> error;
    EXPECT_EQ(ZRMSettingsJsonValidator::validSettingsJsonFromJson(json, error), json) << key;
    EXPECT_EQ(error, std::nullopt) << key;
}

void expectRejected(const char* key, const ZRMJsonValue& value) {
    const ZRMDictionary json{{key, value}};
    std::optional<ZRMError> error;
    EXPECT_EQ(ZRMSettingsJsonValidator::validSettingsJsonFromJson(json, error), ZRMDictionary())
        << key;
    ASSERT_TRUE(error) << key;
    EXPECT_EQ(error->code(), ZRMMobileKitErrorSettingsInvalidFormat);
    EXPECT_EQ(error->localizedDescription().find(std::string("Settings data has invalid format "
                                                             "for field ") +
                                                 key + ": '"),
              0U);
}

}  // namespace

TEST(ZRMSettingsJsonValidator, EmptyDictionaryIsEmptyAndNoError) {
    std::optional<ZRMError> error;
    EXPECT_THAT(ZRMSettingsJsonValidator::validSettingsJsonFromJson({}, error), IsEmpty());
    EXPECT_EQ(error, std::nullopt);
}

TEST(ZRMSettingsJsonValidator, CopiesUrlsWhoseSchemeBeginsWithHttp) {
    for (const auto* key : kUrlKeys) {
        for (const auto* text : {"https://risk.example.com/stat", "http://a", "httpx:b",
                                 "https://a?cid=bank", "http:"}) {
            expectCopied(key, text);
        }
    }
}

TEST(ZRMSettingsJsonValidator, RejectsUrlsWithAnotherSchemeOrNone) {
    for (const auto* key : kUrlKeys) {
        for (const auto* text :
             {"ftp://risk.example.com", "file:///etc/passwd", "risk.example.com", "", "//host/path",
              "/path", "HTTPS://risk.example.com", "xhttp://a"}) {
            expectRejected(key, text);
        }
    }
}

TEST(ZRMSettingsJsonValidator, CopiesATextThatIsNoUrlAtAllForTheReaderToRefuse) {
    for (const auto* key : kUrlKeys) {
        expectCopied(key, "http://a b");
        auto json =
            ZRMMobileServiceSettings::jsonFromSettings(ZRMMobileServiceSettings::defaultSettings());
        json[key] = "http://a b";
        try {
            ZRMMobileServiceSettings::settingsFromJson(json);
            FAIL() << key;
        } catch (const ZRMSettingsException& exception) {
            EXPECT_EQ(exception.what(), std::string("Parameter is nil: ") + key);
        }
    }
}

TEST(ZRMSettingsJsonValidator, CopiesDurationsOnly) {
    for (const auto* key : kDurationKeys) {
        for (const auto* text : {"P1D", "PT30M", "PT0S", "P1Y", "PT-5M"}) {
            expectCopied(key, text);
        }
        for (const auto* text : {"1D", "one day", "P", "", "PT1X", "PT-1S", "-1"}) {
            expectRejected(key, text);
        }
    }
}

TEST(ZRMSettingsJsonValidator, CopiesEveryTextThatIsNotEmptyOfFlagsCountsAndPolicies) {
    for (const auto* key : kNonEmptyKeys) {
        for (const auto* text : {"true", "0", "no", " ", "no number", "no duration"}) {
            expectCopied(key, text);
        }
        expectRejected(key, "");
    }
}

TEST(ZRMSettingsJsonValidator, RejectsValuesThatAreNoText) {
    for (const auto* const key : {kUrlKeys[0], kDurationKeys[0], kNonEmptyKeys[0]}) {
        for (const auto& value :
             {ZRMJsonValue(true), ZRMJsonValue(1), ZRMJsonValue(nullptr),
              ZRMJsonValue(ZRMJsonArray{"P1D"}), ZRMJsonValue(ZRMDictionary{{"a", "b"}})}) {
            expectRejected(key, value);
        }
    }
}

TEST(ZRMSettingsJsonValidator, PassesOverKeysItDoesNotKnow) {
    std::optional<ZRMError> error;
    const ZRMDictionary json{{"unknown", "x"}, {"VPNEVENTDISABLED", "true"}, {"", ""}};
    EXPECT_THAT(ZRMSettingsJsonValidator::validSettingsJsonFromJson(json, error), IsEmpty());
    EXPECT_EQ(error, std::nullopt);
}

TEST(ZRMSettingsJsonValidator, NeverCopiesTheCustomerIdentifierAndDoesNotRejectItEither) {
    std::optional<ZRMError> error;
    const ZRMDictionary json{{"clientId", "other"}, {"customizedClientId", ""}};
    EXPECT_THAT(ZRMSettingsJsonValidator::validSettingsJsonFromJson(json, error), IsEmpty());
    EXPECT_EQ(error, std::nullopt);
}

TEST(ZRMSettingsJsonValidator, NamesTheRejectedKeysInTheirOrderInOneError) {
    const ZRMDictionary json{{"vpnEventDisabled", ""},
                             {"configUpdateInterval", "soon"},
                             {"statisticsUrl", "https://a"},
                             {"unknown", ""}};
    std::optional<ZRMError> error;
    EXPECT_EQ(ZRMSettingsJsonValidator::validSettingsJsonFromJson(json, error),
              (ZRMDictionary{{"statisticsUrl", "https://a"}}));
    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain(), "com.velorin.zrm.mobilekit");
    EXPECT_EQ(error->code(), 1);
    EXPECT_EQ(error->localizedDescription(),
              "Settings data has invalid format for field configUpdateInterval,vpnEventDisabled: "
              "'{\"vpnEventDisabled\":\"\",\"configUpdateInterval\":\"soon\",\"statisticsUrl\":"
              "\"https://a\",\"unknown\":\"\"}' (string)");
    EXPECT_THAT(ZRMSettingsJsonValidator::rejectedKeys(json),
                ElementsAre("configUpdateInterval", "vpnEventDisabled"));
}

TEST(ZRMSettingsJsonValidator, DoesWithoutAnErrorSlot) {
    EXPECT_EQ(ZRMSettingsJsonValidator::validSettingsJsonFromJson(
                  {{"vpnEventDisabled", ""}, {"writeLogsToFile", "true"}}),
              (ZRMDictionary{{"writeLogsToFile", "true"}}));
}

TEST(ZRMSettingsJsonValidator, LetsTheDefaultsThroughButTheIdentifiers) {
    auto defaults =
        ZRMMobileServiceSettings::jsonFromSettings(ZRMMobileServiceSettings::defaultSettings());
    std::optional<ZRMError> error;
    auto valid = ZRMSettingsJsonValidator::validSettingsJsonFromJson(defaults, error);
    EXPECT_EQ(error, std::nullopt);
    EXPECT_EQ(valid.size(),
              std::size(kUrlKeys) + std::size(kDurationKeys) + std::size(kNonEmptyKeys));
    EXPECT_EQ(valid.size() + 2, zrm_settingsTable().size());
    defaults.erase("clientId");
    defaults.erase("customizedClientId");
    EXPECT_EQ(valid, defaults);
}
