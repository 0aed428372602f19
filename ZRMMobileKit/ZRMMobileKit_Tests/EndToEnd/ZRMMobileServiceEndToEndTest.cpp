// Reports on their way from the host's call to the risk server.
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMJWS/ZRMJWS_Tests/Support/ZRMFakeJwsVerification.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Categories/NSFileManager/NSFileManager+ZRMMobileKit.h"
#include "ZRMMobileKit/ZRMMobileKit_Tests/Support/ZRMEndToEndFixture.h"

namespace {

using testing::IsEmpty;
using testing::SizeIs;

constexpr double kMinute = 60;
constexpr double kDay = 86400;

class ZRMMobileServiceEndToEnd : public ZRMEndToEndFixture {
  protected:
    static std::string text(const ZRMDictionary& object, const char* key) {
        return std::string(object.at(key).as_string());
    }
    static std::string environment(const ZRMDictionary& event, const char* key) {
        return text(event.at("environmentData").as_object(), key);
    }
};

}  // namespace

TEST_F(ZRMMobileServiceEndToEnd, LoginArrivesAsOnePostOfTheLoginEvent) {
    EXPECT_TRUE(activate().succeededOnMain());
    ZRMHandlerRecord record;
    service_->sendLogin("user-1", ZRMLoginResult::IncorrectPassword, "ann", record.handler());
    device_.runUntilIdle();
    EXPECT_TRUE(record.succeededOnMain());

    std::vector<ZRMSimulatedRequestRecord> logins;
    for (const auto& request : device_.network().requestsTo("/stat")) {
        if (unpacked(request.request).contains("UserLoginEvent")) {
            logins.push_back(request);
        }
    }
    ASSERT_THAT(logins, SizeIs(1));
    const auto& request = logins[0].request;
    EXPECT_EQ(request.method, "POST");
    EXPECT_EQ(request.url, kUrl);
    EXPECT_EQ(*request.headers.find("Content-Type"), "application/jose+json");
    EXPECT_EQ(*request.headers.find("Content-Encoding"), "gzip");
    EXPECT_EQ("_" + *request.headers.find("Mobile-UUID"), service_->deviceTag()->substr(36));
    ASSERT_NE(request.headers.find("Request-Send-Timestamp"), nullptr);

    const auto event = unpacked(request).at("UserLoginEvent").as_object();
    EXPECT_EQ(text(event, "userId"), "user-1");
    EXPECT_EQ(text(event, "userName"), "ann");
    EXPECT_EQ(text(event, "result"), "INCORRECT_PASSWORD");
    EXPECT_EQ(environment(event, "clientId"), "mybank");
    EXPECT_EQ(environment(event, "productName"), "ZRMMobileKit");
    EXPECT_EQ(environment(event, "productVersion"), "3.28.0.12");
    EXPECT_EQ(environment(event, "applicationId"), "com.example.host");
    EXPECT_EQ(service_->pendingEventCount(), 0u);
}

TEST_F(ZRMMobileServiceEndToEnd, WithoutAUrlOfItsOwnTheDefaultEndpointIsUsed) {
    configuration_.setStatisticsUrl(std::nullopt);
    activate();
    service_->sendLogout();
    device_.runUntilIdle();
    const auto arrived = events("UserLogoutEvent");
    ASSERT_THAT(arrived, SizeIs(1));
    const auto defaults = ZRMMobileServiceSettings::defaultSettings();
    EXPECT_EQ(device_.network().requestsTo("/stat").front().request.url,
              defaults.urls().statisticsUrl());
    EXPECT_EQ(environment(arrived[0], "clientId"), defaults.ids().clientId());
}

TEST_F(ZRMMobileServiceEndToEnd, LoginWithoutAUserNameLeavesItOutOfTheEvent) {
    activate();
    service_->sendLogin("user-1", ZRMLoginResult::Success);
    device_.runUntilIdle();
    ASSERT_THAT(events("UserLoginEvent"), SizeIs(1));
    EXPECT_FALSE(events("UserLoginEvent")[0].contains("userName"));
}

TEST_F(ZRMMobileServiceEndToEnd, SessionIdWithAZeroByteAndBeyondAsciiArrivesUnchanged) {
    activate();
    const std::string sessionId("a\0\xC3\xBC\xF0\x9F\x98\x80\"\\\n", 11);
    service_->sendSessionId(sessionId);
    device_.runUntilIdle();
    ASSERT_THAT(events("SessionIdEvent"), SizeIs(1));
    EXPECT_EQ(text(events("SessionIdEvent")[0], "sessionId"), sessionId);
}

TEST_F(ZRMMobileServiceEndToEnd, EventThatIsDisabledByDefaultIsError12AndNothingIsSent) {
    activate();
    ZRMHandlerRecord record;
    service_->sendUINavigationEvent("start page", record.handler());
    device_.advanceBy(kMinute);
    EXPECT_EQ(record.code(), 12);
    EXPECT_TRUE(record.onMainQueue());
    EXPECT_EQ(record.calls()[0].error->localizedDescription(), "Event is disabled");
    EXPECT_THAT(events("UINavigationEvent"), IsEmpty());
}

TEST_F(ZRMMobileServiceEndToEnd, EventThatTheSettingsEnableArrives) {
    auto settings = ZRMMobileServiceSettings::defaultSettings();
    settings.events().enableUiNavigationEvent();
    settings.events().disableUserLoginEvent();
    EXPECT_TRUE(activateWith(settings).succeededOnMain());
    ZRMHandlerRecord navigation;
    ZRMHandlerRecord login;
    impl_->sendUINavigationEvent("start page", navigation.handler());
    impl_->sendLogin("user-1", ZRMLoginResult::Success, std::nullopt, login.handler());
    device_.runUntilIdle();
    EXPECT_TRUE(navigation.succeededOnMain());
    EXPECT_EQ(login.code(), 12);
    EXPECT_THAT(events("UINavigationEvent"), SizeIs(1));
    EXPECT_THAT(events("UserLoginEvent"), IsEmpty());
}

TEST_F(ZRMMobileServiceEndToEnd, RefusedValuesNeverReachTheNetwork) {
    activate();
    device_.network().forgetRequests();
    ZRMHandlerRecord record;
    service_->sendLogin("", ZRMLoginResult::Success, record.handler());
    EXPECT_EQ(record.code(), 9);
    device_.advanceBy(kMinute);
    EXPECT_THAT(events("UserLoginEvent"), IsEmpty());
}

TEST_F(ZRMMobileServiceEndToEnd, FailedActivationCanBeRepeatedAndReportsThenArrive) {
    settingsProvider_ = std::make_shared<ZRMFakeSettingsProvider>();
    settingsProvider_->error = ZRMError::withDescription("settings", 1, "cannot be trusted");
    impl_ = std::make_shared<ZRMMobileServiceImpl>(device_.platform(), configuration_,
                                                   settingsProvider_);
    ZRMHandlerRecord failed;
    impl_->activateWithCompletionHandler(failed.handler());
    device_.runUntilIdle();
    EXPECT_EQ(failed.code(), 1);

    settingsProvider_->error = std::nullopt;
    ZRMHandlerRecord succeeded;
    impl_->activateWithCompletionHandler(succeeded.handler());
    ZRMHandlerRecord logout;
    device_.runUntilIdle();
    impl_->sendLogout(logout.handler());
    device_.runUntilIdle();
    EXPECT_TRUE(succeeded.succeededOnMain());
    EXPECT_TRUE(logout.succeededOnMain());
    EXPECT_THAT(events("UserLogoutEvent"), SizeIs(1));
}

TEST_F(ZRMMobileServiceEndToEnd, StartActivatesAndAnalyzes) {
    service_ = ZRMMobileService::createServiceWithConfiguration(configuration_);
    ZRMHandlerRecord record;
    service_->startWithCompletionHandler(record.handler());
    device_.runUntilIdle();
    EXPECT_TRUE(record.succeededOnMain());
    ZRMHandlerRecord repeated;
    service_->startWithCompletionHandler(repeated.handler());
    EXPECT_EQ(repeated.count(), 1u);
    EXPECT_EQ(repeated.calls()[0].error, std::nullopt);
}

TEST_F(ZRMMobileServiceEndToEnd, LoginWithoutConnectionArrivesOnceAfterThreeDaysAndARestart) {
    activate();
    device_.setConnected(false);
    ZRMHandlerRecord record;
    service_->sendLogin("user-1", ZRMLoginResult::Success, record.handler());
    device_.runUntilIdle();
    EXPECT_TRUE(record.succeededOnMain());
    EXPECT_EQ(service_->pendingEventCount(), 1u);
    device_.advanceBy(3 * kDay);
    restart();
    device_.network().forgetRequests();
    device_.setConnected(true);
    activate();
    device_.advanceBy(kDay);
    EXPECT_THAT(events("UserLoginEvent"), SizeIs(1));
    EXPECT_EQ(service_->pendingEventCount(), 0u);
}

TEST_F(ZRMMobileServiceEndToEnd, ReportDuringActivationIsError3AndDoesNotArrive) {
    service_ = ZRMMobileService::createServiceWithConfiguration(configuration_);
    ZRMHandlerRecord activation;
    ZRMHandlerRecord before;
    service_->sendLogout();
    service_->sendLogoutWithCompletionHandler(before.handler());
    EXPECT_EQ(before.code(), 3);
    service_->activateWithCompletionHandler(activation.handler());
    device_.runUntilIdle();
    EXPECT_TRUE(activation.succeededOnMain());
    EXPECT_THAT(events("UserLogoutEvent"), IsEmpty());
}

TEST_F(ZRMMobileServiceEndToEnd, DeviceTagIsTheOneThatEventsCarryAndOutlivesTheProcess) {
    activate();
    const auto tag = service_->deviceTag();
    ASSERT_TRUE(tag);
    ASSERT_EQ(tag->size(), 75u);
    EXPECT_EQ(tag->substr(36, 3), "_L!");  // the server has issued none
    const auto own = tag->substr(0, 36);
    service_->sendLogout();
    device_.runUntilIdle();
    EXPECT_EQ(environment(events("UserLogoutEvent").at(0), "deviceTag"), own);
    restart();
    EXPECT_EQ(service_, nullptr);
    activate();
    EXPECT_EQ(service_->deviceTag()->substr(0, 36), own);
}

TEST_F(ZRMMobileServiceEndToEnd, ExecutionSessionLastsOverStartsTenMinutesApart) {
    const auto sessionOfNextStart = [this] {
        device_.network().forgetRequests();
        activate();
        service_->sendLogout();
        device_.runUntilIdle();
        return environment(events("UserLogoutEvent").at(0), "execSessionId");
    };
    const auto first = sessionOfNextStart();
    EXPECT_EQ(first.size(), 36u);
    device_.advanceBy(10 * kMinute);
    restart();
    EXPECT_EQ(sessionOfNextStart(), first);
    device_.advanceBy(30 * kMinute + 1);
    restart();
    EXPECT_NE(sessionOfNextStart(), first);
}

TEST_F(ZRMMobileServiceEndToEnd, SecondServiceOfAProcessUsesTheCoreThatRunsAlready) {
    activate();
    const auto first = service_;
    EXPECT_TRUE(activate().succeededOnMain());
    device_.setConnected(false);
    first->sendLogout();
    service_->sendLogout();
    device_.runUntilIdle();
    EXPECT_EQ(first->pendingEventCount(), 2u);
    EXPECT_EQ(service_->pendingEventCount(), 2u);
    device_.setConnected(true);
    device_.advanceBy(kDay);
    EXPECT_EQ(service_->pendingEventCount(), 0u);
}

TEST_F(ZRMMobileServiceEndToEnd, LogIsUploadedEvery20SecondsWhenTheSettingsSaySo) {
    auto settings = ZRMMobileServiceSettings::defaultSettings();
    settings.events().enableLogDataEvent();
    activateWith(settings);
    zrm_logVerbose(nullptr, "a line of the log");
    device_.advanceBy(20);
    const auto arrived = events("LogDataEvent");
    ASSERT_THAT(arrived, SizeIs(testing::Ge(1)));
    EXPECT_THAT(zrm_compactJsonText(arrived[0]).value(), testing::HasSubstr("a line of the log"));
}

TEST_F(ZRMMobileServiceEndToEnd, LogOf204800BytesIsUploadedBeforeThat) {
    auto settings = ZRMMobileServiceSettings::defaultSettings();
    settings.events().enableLogDataEvent();
    activateWith(settings);
    for (int count = 0; count < 205; ++count) {
        zrm_logError(nullptr, std::string(1000, 'x'));
    }
    device_.advanceBy(1);
    EXPECT_THAT(events("LogDataEvent"), SizeIs(1));
}

TEST_F(ZRMMobileServiceEndToEnd, AppliedSettingsAreReportedWhenTheSettingsSaySo) {
    auto settings = ZRMMobileServiceSettings::defaultSettings();
    settings.events().enableConfigEvent();
    activateWith(settings);
    impl_->analyzeEnvironmentWithCompletionHandler(nullptr);
    device_.runUntilIdle();
    const auto arrived = events("ConfigEvent");
    ASSERT_THAT(arrived, SizeIs(1));
    const auto report = zrm_jsonFromText(text(arrived[0], "appliedConfig")).value().as_object();
    EXPECT_EQ(text(report, "customizedClientId"), "mybank");
    EXPECT_EQ(text(report, "configEventDisabled"), "false");
    EXPECT_EQ(text(report, "statisticsUrl"), kUrl);
}

TEST_F(ZRMMobileServiceEndToEnd, EveryOrderOfWorkEndsWithEachHandlerCalledOnce) {
    for (std::uint64_t seed = 1; seed <= 40; ++seed) {
        restart();
        device_.network().forgetRequests();
        device_.setSchedulingSeed(seed);
        service_ = ZRMMobileService::createServiceWithConfiguration(configuration_);
        ZRMHandlerRecord start;
        ZRMHandlerRecord activation;
        ZRMHandlerRecord login;
        ZRMHandlerRecord logout;
        service_->startWithCompletionHandler(start.handler());
        service_->activateWithCompletionHandler(activation.handler());
        device_.runUntilIdle();
        service_->sendLogin("user", ZRMLoginResult::Success, login.handler());
        service_->sendLogoutWithCompletionHandler(logout.handler());
        device_.runUntilIdle();
        EXPECT_TRUE(start.succeededOnMain()) << seed;
        EXPECT_TRUE(activation.succeededOnMain()) << seed;
        EXPECT_TRUE(login.succeededOnMain()) << seed;
        EXPECT_TRUE(logout.succeededOnMain()) << seed;
        EXPECT_THAT(events("UserLoginEvent"), SizeIs(1)) << seed;
        EXPECT_THAT(events("UserLogoutEvent"), SizeIs(1)) << seed;
    }
}

TEST_F(ZRMMobileServiceEndToEnd, StoredSettingsAreInForceFromTheActivationOn) {
    const auto path = zrm_mobileKitSettingsFilePath(*device_.platform()->directories);
    device_.disk().put(path, zrm_jwsTextWithPayload(
                                 R"({"config":{"uiNavigationEventDisabled":"false",
                                               "userLogoutEventDisabled":"true"}})"));
    EXPECT_TRUE(activate().succeededOnMain());
    ZRMHandlerRecord navigation;
    ZRMHandlerRecord logout;
    service_->sendUINavigationEvent("/accounts", navigation.handler());
    service_->sendLogoutWithCompletionHandler(logout.handler());
    device_.runUntilIdle();
    EXPECT_TRUE(navigation.succeededOnMain());
    EXPECT_EQ(logout.code(), 12);
    EXPECT_THAT(events("UINavigationEvent"), SizeIs(1));
}

TEST_F(ZRMMobileServiceEndToEnd, StoredSettingsThatCannotBeUsedFailTheActivationUntilTheyAreGone) {
    const auto path = zrm_mobileKitSettingsFilePath(*device_.platform()->directories);
    device_.disk().put(path, zrm_jwsTextWithPayload("{}"));
    EXPECT_EQ(activate().code(), 1);
    device_.disk().put(path, "no document at all");
    ZRMHandlerRecord again;
    service_->activateWithCompletionHandler(again.handler());
    device_.runUntilIdle();
    EXPECT_TRUE(again.succeededOnMain());
}

TEST_F(ZRMMobileServiceEndToEnd, DocumentsThatDoNotVerifyChangeNeitherSettingsNorTag) {
    const auto answer = ZRMSimulatedAnswer::withBody(
        zrm_jwsTextWithPayload(R"({"config":{},"uuid":"stolen","i":"P1D"})"));
    device_.network().script("/config/v1", answer);
    device_.network().script("/zwjsqd", answer);
    EXPECT_TRUE(activate().succeededOnMain());
    EXPECT_EQ(device_.network().requestsTo("/config/v1").size(), 1u);
    EXPECT_EQ(device_.network().requestsTo("/zwjsqd").size(), 1u);
    EXPECT_FALSE(
        device_.disk().holdsFile(zrm_mobileKitSettingsFilePath(*device_.platform()->directories)));
    EXPECT_EQ(service_->deviceTag()->substr(36, 3), "_L!");
}
