#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMJWS/ZRMJWS_Tests/Support/ZRMFakeJwsVerification.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Categories/NSFileManager/NSFileManager+ZRMMobileKit.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMJwsObject+Settings.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Provider/ZRMSettingsProvider.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Provided {
    ZRMMobileServiceSettings settings;
    std::optional<ZRMError> error;
};

class ZRMSettingsProviderTest : public testing::Test {
  protected:
    void store(std::string_view bytes) {
        device_.disk().put(zrm_mobileKitSettingsFilePath(*device_.platform()->directories), bytes);
    }
    void storePayload(std::string_view payload) { store(zrm_jwsTextWithPayload(payload)); }
    ZRMSettingsProvider provider() {
        return {std::make_shared<ZRMSettingsStorage>(device_.platform()->fileManager,
                                                     device_.platform()->directories),
                verification_.verification()};
    }
    Provided provide() {
        std::vector<Provided> calls;
        provider().provideSettings(
            [&calls](ZRMMobileServiceSettings settings, std::optional<ZRMError> error) {
                calls.push_back({std::move(settings), std::move(error)});
            });
        EXPECT_EQ(calls.size(), 1U);
        return calls.at(0);
    }
    // Error 1 with that description, beside the defaults and one line in the log.
    void expectRefusal(const std::string& description) {
        const ZRMRecordedLog log;
        const auto provided = provide();
        EXPECT_EQ(provided.settings, ZRMMobileServiceSettings::defaultSettings());
        ASSERT_TRUE(provided.error);
        EXPECT_EQ(provided.error->domain(), "com.velorin.zrm.mobilekit");
        EXPECT_EQ(provided.error->code(), 1);
        EXPECT_EQ(provided.error->localizedDescription(), description);
        EXPECT_THAT(log.errors(), ElementsAre(description));
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    ZRMRecordedLog log_;
    ZRMFakeJwsVerification verification_;
};

}  // namespace

TEST_F(ZRMSettingsProviderTest, WithoutAFileDeliversTheDefaultsAtOnceAndSilently) {
    const auto provided = provide();
    EXPECT_EQ(provided.settings, ZRMMobileServiceSettings::defaultSettings());
    EXPECT_EQ(provided.error, std::nullopt);
    EXPECT_THAT(log_.messages(), IsEmpty());
    EXPECT_THAT(verification_.calls, IsEmpty());
}

TEST_F(ZRMSettingsProviderTest, BytesThatAreNoJwsObjectSilentlyYieldTheDefaults) {
    for (const auto* bytes :
         {"", "garbage", "{}", "[]", R"({"payload":"e30"})", R"({"payload":1,"signatures":[]})",
          R"({"payload":"e30","signatures":[{}]})",
          R"({"payload":"e30","payload":"e30","signatures":[]})"}) {
        store(bytes);
        const auto provided = provide();
        EXPECT_EQ(provided.settings, ZRMMobileServiceSettings::defaultSettings()) << bytes;
        EXPECT_EQ(provided.error, std::nullopt) << bytes;
    }
    EXPECT_THAT(log_.errors(), IsEmpty());
    EXPECT_THAT(verification_.calls, IsEmpty());
}

TEST_F(ZRMSettingsProviderTest, VerifiesWithoutCheckingTheCertificates) {
    storePayload(R"({"config":{}})");
    provide();
    ASSERT_EQ(verification_.calls.size(), 1U);
    EXPECT_FALSE(verification_.calls[0].checkCert);
    EXPECT_EQ(verification_.calls[0].object.payload(), "eyJjb25maWciOnt9fQ");
}

TEST_F(ZRMSettingsProviderTest, PassesAVerificationErrorOnBesideTheDefaults) {
    storePayload(R"({"config":{"vpnEventDisabled":"true"}})");
    verification_.error = ZRMJwsErrorFactory::errorForCode(ZRMJwsErrorSignatureNotFound);
    const auto provided = provide();
    EXPECT_EQ(provided.settings, ZRMMobileServiceSettings::defaultSettings());
    EXPECT_EQ(provided.error, verification_.error);
    EXPECT_THAT(log_.errors(), ElementsAre("Signature not found."));
}

TEST_F(ZRMSettingsProviderTest, WaitsForTheVerificationAndOutlivesIt) {
    storePayload(R"({"config":{"vpnEventDisabled":"true"}})");
    verification_.holdsBack = true;
    int calls = 0;
    provider().provideSettings(
        [&calls](const ZRMMobileServiceSettings& settings, const std::optional<ZRMError>& error) {
            ++calls;
            EXPECT_TRUE(settings.events().isVpnEventDisabled());
            EXPECT_EQ(error, std::nullopt);
        });
    EXPECT_EQ(calls, 0);
    verification_.giveAnswers();
    EXPECT_EQ(calls, 1);
}

TEST_F(ZRMSettingsProviderTest, PayloadThatIsNoJsonObjectIsError1) {
    for (const auto* payload : {"", "{", "[]", "1", R"({"config":{},"config":{}})"}) {
        storePayload(payload);
        expectRefusal("Data has invalid format.");
    }
    store(R"({"payload":"*","signatures":[]})");
    expectRefusal("Data has invalid format.");
}

TEST_F(ZRMSettingsProviderTest, MissingConfigIsError1WithTheAbsentValue) {
    storePayload("{}");
    expectRefusal("Settings data has invalid format for field config: '(null)' (nil)");
}

TEST_F(ZRMSettingsProviderTest, ConfigThatIsNoObjectIsError1WithItsValue) {
    storePayload(R"({"config":"none"})");
    expectRefusal("Settings data has invalid format for field config: 'none' (string)");
    storePayload(R"({"config":[1]})");
    expectRefusal("Settings data has invalid format for field config: '[1]' (array)");
    storePayload(R"({"config":null})");
    expectRefusal("Settings data has invalid format for field config: 'null' (null)");
}

TEST_F(ZRMSettingsProviderTest, EntriesOfTheDocumentWinAndTheRestKeepsItsDefault) {
    storePayload(R"({"config":{"uiNavigationEventDisabled":"false","iosCallInfoEventDisabled":"1",
                     "configUpdateInterval":"PT2H","statisticsUrl":"https://other.example.com/s"}})");
    auto expected = ZRMMobileServiceSettings::defaultSettings();
    expected.events().enableUiNavigationEvent();
    expected.events().disableCallInfoEvent();
    expected.timeIntervals().setSettingsUpdateInterval(7200);
    expected.urls().setDefaultStatisticsUrl("https://other.example.com/s");
    const auto provided = provide();
    EXPECT_EQ(provided.settings, expected);
    EXPECT_EQ(provided.error, std::nullopt);
    EXPECT_THAT(log_.errors(), IsEmpty());
}

TEST_F(ZRMSettingsProviderTest, EmptyConfigYieldsTheDefaults) {
    storePayload(R"({"config":{},"more":1})");
    const auto provided = provide();
    EXPECT_EQ(provided.settings, ZRMMobileServiceSettings::defaultSettings());
    EXPECT_EQ(provided.error, std::nullopt);
}

TEST_F(ZRMSettingsProviderTest, RejectedEntriesSilentlyKeepTheirDefaults) {
    storePayload(R"({"config":{"statisticsUrl":"ftp://a","execSessionTimeout":"later",
                     "vpnEventDisabled":"","clientId":"thief","uiNavigationEventDisabled":"0"}})");
    auto expected = ZRMMobileServiceSettings::defaultSettings();
    expected.events().enableUiNavigationEvent();
    const auto provided = provide();
    EXPECT_EQ(provided.settings, expected);
    EXPECT_EQ(provided.error, std::nullopt);
    EXPECT_THAT(log_.errors(), IsEmpty());
}

TEST_F(ZRMSettingsProviderTest, UrlTextThatIsNoUrlIsError1AndDoesNotEndTheProcess) {
    storePayload(R"({"config":{"mobileUuid":"http://a b"}})");
    expectRefusal("Parameter is nil: mobileUuid");
}

TEST_F(ZRMSettingsProviderTest, ReadsTheFileAnewEachTime) {
    auto provider = this->provider();
    std::vector<bool> disabled;
    const auto callback = [&](const ZRMMobileServiceSettings& settings,
                              const std::optional<ZRMError>&) {
        disabled.push_back(settings.events().isVpnEventDisabled());
    };
    provider.provideSettings(callback);
    storePayload(R"({"config":{"vpnEventDisabled":"true"}})");
    provider.provideSettings(callback);
    EXPECT_THAT(disabled, ElementsAre(false, true));
}

TEST(ZRMJwsObjectSettings, FailureOfAnyKindIsError1) {
    for (const auto* bytes : {"", "{", "[]", "{}"}) {
        const auto object = jwsObjectFromSettingsData(zrm_dataFromText(bytes));
        ASSERT_FALSE(object);
        EXPECT_EQ(object.error().domain(), "com.velorin.zrm.mobilekit");
        EXPECT_EQ(object.error().code(), 1);
        EXPECT_EQ(object.error().localizedDescription(), "Data has invalid format.");
    }
    EXPECT_TRUE(jwsObjectFromSettingsData(zrm_dataFromText(zrm_jwsTextWithPayload("{}"))));
}
