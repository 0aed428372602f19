#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMMobileKit/ZRMMobileKit_Tests/Support/ZRMServiceFixture.h"

namespace {

using ZRMMobileServiceActivation = ZRMServiceFixture;
using ZRMMobileServiceStart = ZRMServiceFixture;
using ZRMMobileServiceAnalysis = ZRMServiceFixture;

using testing::Contains;
using testing::IsEmpty;
using testing::Not;

}  // namespace

TEST_F(ZRMMobileServiceActivation, SucceedsOnTheMainQueueOnceEveryServiceIsActive) {
    ZRMHandlerRecord record;
    second_->holdsBack = true;
    service().activateWithCompletionHandler(record.handler());
    device_.runUntilIdle();
    EXPECT_EQ(record.count(), 0u);
    EXPECT_FALSE(service().isActivated());
    second_->giveAnswers();
    EXPECT_EQ(record.count(), 0u);
    device_.runUntilIdle();
    EXPECT_TRUE(record.succeededOnMain());
    EXPECT_TRUE(service().isActivated());
}

TEST_F(ZRMMobileServiceActivation, LogsItsNameAndThatItIsComplete) {
    activate();
    EXPECT_THAT(log_.verboses(), Contains("activateWithCompletionHandler:"));
    EXPECT_THAT(log_.verboses(),
                Contains("activateWithCompletionHandler: activation successfuly complete"));
}

TEST_F(ZRMMobileServiceActivation, SecondCallSucceedsAtOnceAndBuildsNothing) {
    activate();
    ZRMHandlerRecord record;
    service().activateWithCompletionHandler(record.handler());
    EXPECT_EQ(record.count(), 1u);
    EXPECT_EQ(record.calls()[0].error, std::nullopt);
    device_.runUntilIdle();
    EXPECT_EQ(record.count(), 1u);
    EXPECT_EQ(made_, 1);
    EXPECT_EQ(provider_->requests, 1);
    EXPECT_THAT(first_->calls, IsEmpty());
}

TEST_F(ZRMMobileServiceActivation, UrlThatIsNoHttpUrlIsError8AtOnceBeforeSettingsAreRead) {
    for (const auto* url : {"ftp://risk.example.com", "no url", "", "https://localhost/stat"}) {
        service_.reset();
        configuration_.setStatisticsUrl(url);
        ZRMHandlerRecord record;
        service().activateWithCompletionHandler(record.handler());
        EXPECT_EQ(record.code(), 8) << url;
        EXPECT_FALSE(service().isActivated());
        EXPECT_EQ(provider_->requests, 0);
    }
}

TEST_F(ZRMMobileServiceActivation, UrlOfTheConfigurationIsTheCustomStatisticsUrl) {
    configuration_.setStatisticsUrl("https://risk.example.com/stat?cid=bank");
    EXPECT_TRUE(activate().succeededOnMain());
    EXPECT_EQ(settings_.urls().customStatisticsUrl(), "https://risk.example.com/stat?cid=bank");
    EXPECT_EQ(settings_.customizedClientId(), "bank");
}

TEST_F(ZRMMobileServiceActivation, WithoutAUrlTheOneOfTheSettingsStays) {
    activate();
    EXPECT_EQ(settings_, provider_->settings);
}

TEST_F(ZRMMobileServiceActivation, LaterChangesOfTheHostsConfigurationChangeNothing) {
    static_cast<void>(service());
    configuration_.setStatisticsUrl("no url");
    EXPECT_TRUE(activate().succeededOnMain());
}

TEST_F(ZRMMobileServiceActivation, ErrorOfTheSettingsProviderFailsItOnTheProvidersThread) {
    provider_->error = error(77);
    ZRMHandlerRecord record;
    service().activateWithCompletionHandler(record.handler());
    EXPECT_EQ(record.code(), 77);
    EXPECT_FALSE(service().isActivated());
    EXPECT_EQ(made_, 0);
    EXPECT_EQ(service().deviceTag(), std::nullopt);
}

TEST_F(ZRMMobileServiceActivation, CanBeRepeatedAfterTheProviderFailed) {
    provider_->error = error(77);
    EXPECT_EQ(activate().code(), 77);
    provider_->error = std::nullopt;
    EXPECT_TRUE(activate().succeededOnMain());
    EXPECT_EQ(provider_->requests, 2);
}

TEST_F(ZRMMobileServiceActivation, ErrorOfAnInternalServiceFailsItOnTheMainQueue) {
    second_->activationError = error(5);
    const auto record = activate();
    EXPECT_EQ(record.code(), 5);
    EXPECT_TRUE(record.onMainQueue());
    EXPECT_FALSE(service().isActivated());
    EXPECT_THAT(log_.verboses(),
                Contains("activateWithCompletionHandler: activation error: error 5"));
    EXPECT_THAT(log_.verboses(),
                Not(Contains("activateWithCompletionHandler: activation successfuly complete")));
}

TEST_F(ZRMMobileServiceActivation, CanBeRepeatedAfterAServiceFailedAndBuildsAfresh) {
    first_->activationError = error(5);
    EXPECT_EQ(activate().code(), 5);
    first_->activationError = std::nullopt;
    EXPECT_TRUE(activate().succeededOnMain());
    EXPECT_EQ(made_, 2);
    EXPECT_TRUE(service().isActivated());
}

TEST_F(ZRMMobileServiceActivation, FirstErrorOfSeveralServicesWins) {
    first_->activationError = error(5);
    second_->activationError = error(6);
    EXPECT_EQ(activate().code(), 5);
}

TEST_F(ZRMMobileServiceActivation, AfterStartActionsFollowTheHandlerOnTheMainQueue) {
    std::vector<std::string> order;
    service().activateWithCompletionHandler([&](const std::optional<ZRMError>&) {
        EXPECT_EQ(first_->calls, std::vector<std::string>{"activate"});
        order.emplace_back("handler");
    });
    device_.runUntilIdle();
    EXPECT_EQ(order.size(), 1u);
    EXPECT_EQ(first_->calls, (std::vector<std::string>{"activate", "afterStart"}));
    EXPECT_EQ(second_->calls, (std::vector<std::string>{"activate", "afterStart"}));
}

TEST_F(ZRMMobileServiceActivation, FailedActivationPerformsNoAfterStartActions) {
    setSettingsUpdated({});
    first_->activationError = error(5);
    ZRMHandlerRecord record;
    service().activateWithCompletionHandler(record.handler());
    device_.runUntilIdle();
    EXPECT_EQ(second_->calls, std::vector<std::string>{"activate"});
    EXPECT_THAT(device_.network().requestsTo("/config/v1"), IsEmpty());
}

TEST_F(ZRMMobileServiceActivation, FailedAfterStartActionIsOnlyLogged) {
    second_->afterStartError = error(9);
    EXPECT_TRUE(activate().succeededOnMain());
    EXPECT_THAT(log_.errors(), Contains("error 9"));
}

TEST_F(ZRMMobileServiceActivation, EndsWithTheSettingsUpdate) {
    setSettingsUpdated({});
    configuration_.setStatisticsUrl("https://risk.example.com/stat?cid=bank");
    EXPECT_TRUE(activate().succeededOnMain());
    const auto requests = device_.network().requestsTo("/config/v1");
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].request.url, provider_->settings.urls().settingsUpdateUrl());
    EXPECT_EQ(*requests[0].request.headers.find("Mobile-UUID"), "secure");
    const auto params = zrm_jsonFromText(requests[0].bodyText()).value().as_object();
    EXPECT_EQ(params.at("deviceTag"), "tag_secure");
    EXPECT_EQ(params.at("version"), "3.28.0.12");
    EXPECT_EQ(params.at("clientId"), "bank");
}

TEST_F(ZRMMobileServiceActivation, FailedSettingsUpdateIsOnlyLogged) {
    setSettingsUpdated({});
    EXPECT_TRUE(activate().succeededOnMain());
    ASSERT_THAT(log_.errors(), Not(IsEmpty()));
    EXPECT_EQ(log_.errors().back(), "Settings update complete. Error: Data has invalid format.");
    EXPECT_TRUE(service().isActivated());
}

TEST_F(ZRMMobileServiceActivation, SettingsUpdateThatIsNotDueIsComplete) {
    activate();
    EXPECT_THAT(device_.network().requestsTo("/config/v1"), IsEmpty());
    ASSERT_GE(log_.verboses().size(), 2U);
    EXPECT_EQ(log_.verboses().back(), "Settings update complete");
    EXPECT_THAT(log_.verboses(), Contains("No need to update settings"));
}

TEST_F(ZRMMobileServiceActivation, SettingsUpdateOfAServiceThatIsGoneStillEnds) {
    setSettingsUpdated({});
    device_.network().script("/config/v1", ZRMSimulatedAnswer::withBody("late").after(10));
    activate();
    service_.reset();
    device_.advanceBy(11);
    ASSERT_THAT(log_.errors(), Not(IsEmpty()));
    EXPECT_EQ(log_.errors().back(), "Settings update complete. Error: Data has invalid format.");
}

TEST_F(ZRMMobileServiceActivation, ServerTimeProviderIsNewForEachAndNotYetValid) {
    first_->activationError = error(5);
    activate();
    const auto before = serverTimeProvider_;
    ASSERT_NE(before, nullptr);
    EXPECT_FALSE(before->isValid());
    activate();
    EXPECT_NE(serverTimeProvider_, before);
}

TEST_F(ZRMMobileServiceActivation, CallWhileAnotherIsUnderWaySharesItsOutcome) {
    provider_->holdsBack = true;
    ZRMHandlerRecord one;
    ZRMHandlerRecord two;
    ZRMHandlerRecord three;
    service().activateWithCompletionHandler(one.handler());
    service().activateWithCompletionHandler(two.handler());
    provider_->giveAnswers();
    service().activateWithCompletionHandler(three.handler());
    EXPECT_EQ(one.count() + two.count() + three.count(), 0u);
    device_.runUntilIdle();
    EXPECT_TRUE(one.succeededOnMain());
    EXPECT_TRUE(two.succeededOnMain());
    EXPECT_TRUE(three.succeededOnMain());
    EXPECT_EQ(made_, 1);
    EXPECT_EQ(provider_->requests, 1);
}

TEST_F(ZRMMobileServiceActivation, CallWhileAFailingOneIsUnderWayFailsAsWell) {
    first_->activationError = error(5);
    ZRMHandlerRecord one;
    ZRMHandlerRecord two;
    service().activateWithCompletionHandler(one.handler());
    service().activateWithCompletionHandler(two.handler());
    device_.runUntilIdle();
    EXPECT_EQ(one.code(), 5);
    EXPECT_EQ(two.code(), 5);
}

TEST_F(ZRMMobileServiceActivation, ServiceThatIsGoneBeforeTheSettingsComeFailsWithError3) {
    provider_->holdsBack = true;
    ZRMHandlerRecord one;
    ZRMHandlerRecord two;
    service().activateWithCompletionHandler(one.handler());
    service().activateWithCompletionHandler(two.handler());
    service().activateWithCompletionHandler(nullptr);
    service_.reset();
    provider_->giveAnswers();
    EXPECT_EQ(one.code(), 3);
    EXPECT_EQ(two.code(), 3);
    EXPECT_EQ(made_, 0);
}

TEST_F(ZRMMobileServiceActivation, ServiceThatIsGoneWhileServicesActivateStillCallsItsHandler) {
    first_->holdsBack = true;
    ZRMHandlerRecord record;
    service().activateWithCompletionHandler(record.handler());
    service_.reset();
    first_->giveAnswers();
    device_.runUntilIdle();
    EXPECT_TRUE(record.succeededOnMain());
}

TEST_F(ZRMMobileServiceActivation, HandlerMayLetGoOfTheService) {
    int calls = 0;
    service().activateWithCompletionHandler([&](const std::optional<ZRMError>&) {
        ++calls;
        service_.reset();
    });
    device_.runUntilIdle();
    EXPECT_EQ(calls, 1);
}

TEST_F(ZRMMobileServiceActivation, HandlerMayCallTheService) {
    ZRMHandlerRecord again;
    ZRMHandlerRecord analysis;
    ZRMHandlerRecord logout;
    service().activateWithCompletionHandler([&](const std::optional<ZRMError>&) {
        service().activateWithCompletionHandler(again.handler());
        service().analyzeEnvironmentWithCompletionHandler(analysis.handler());
        service().sendLogout(logout.handler());
    });
    device_.runUntilIdle();
    EXPECT_TRUE(again.succeededOnMain());
    EXPECT_TRUE(analysis.succeededOnMain());
    EXPECT_TRUE(logout.succeededOnMain());
}

TEST_F(ZRMMobileServiceActivation, HandlerMayRepeatAFailedActivation) {
    first_->activationError = error(5);
    ZRMHandlerRecord again;
    service().activateWithCompletionHandler([&](const std::optional<ZRMError>& failure) {
        ASSERT_TRUE(failure);
        first_->activationError = std::nullopt;
        service().activateWithCompletionHandler(again.handler());
    });
    device_.runUntilIdle();
    EXPECT_TRUE(again.succeededOnMain());
}

TEST_F(ZRMMobileServiceActivation, HandlersMayBeAbsent) {
    configuration_.setStatisticsUrl("no url");
    service().activateWithCompletionHandler(nullptr);
    service_.reset();
    configuration_.setStatisticsUrl(std::nullopt);
    provider_->error = error(1);
    service().activateWithCompletionHandler(nullptr);
    provider_->error = std::nullopt;
    service().analyzeEnvironmentWithCompletionHandler(nullptr);
    service().activateWithCompletionHandler(nullptr);
    device_.runUntilIdle();
    service().activateWithCompletionHandler(nullptr);
    service().startWithCompletionHandler(nullptr);
    service().analyzeEnvironmentWithCompletionHandler(nullptr);
    device_.runUntilIdle();
    EXPECT_TRUE(service().isActivated());
}

TEST_F(ZRMMobileServiceStart, ActivatesThenAnalyzes) {
    ZRMHandlerRecord record;
    service().startWithCompletionHandler(record.handler());
    device_.runUntilIdle();
    EXPECT_TRUE(record.succeededOnMain());
    EXPECT_THAT(first_->calls, Contains("activate"));
    EXPECT_THAT(first_->calls, Contains("analyze"));
}

TEST_F(ZRMMobileServiceStart, FailedActivationGoesToTheHandlerAndNothingIsAnalyzed) {
    first_->activationError = error(5);
    ZRMHandlerRecord record;
    service().startWithCompletionHandler(record.handler());
    device_.runUntilIdle();
    EXPECT_EQ(record.code(), 5);
    EXPECT_THAT(second_->calls, Not(Contains("analyze")));
}

TEST_F(ZRMMobileServiceStart, InvalidUrlGoesToTheHandlerAtOnce) {
    configuration_.setStatisticsUrl("no url");
    ZRMHandlerRecord record;
    service().startWithCompletionHandler(record.handler());
    EXPECT_EQ(record.code(), 8);
}

TEST_F(ZRMMobileServiceStart, FailedAnalysisGoesToTheHandler) {
    first_->analysisError = error(6);
    ZRMHandlerRecord record;
    service().startWithCompletionHandler(record.handler());
    device_.runUntilIdle();
    EXPECT_EQ(record.code(), 6);
    EXPECT_TRUE(service().isActivated());
}

TEST_F(ZRMMobileServiceStart, OfAServiceThatIsGoneStillCallsTheHandlerOnce) {
    ZRMHandlerRecord whileServicesActivate;
    first_->holdsBack = true;
    service().startWithCompletionHandler(whileServicesActivate.handler());
    service_.reset();
    first_->giveAnswers();
    device_.runUntilIdle();
    first_->giveAnswers();
    device_.runUntilIdle();
    EXPECT_TRUE(whileServicesActivate.succeededOnMain());

    ZRMHandlerRecord beforeTheSettingsCome;
    provider_->holdsBack = true;
    service().startWithCompletionHandler(beforeTheSettingsCome.handler());
    service_.reset();
    provider_->giveAnswers();
    EXPECT_EQ(beforeTheSettingsCome.code(), 3);
}

TEST_F(ZRMMobileServiceStart, OfAnActiveServiceOnlyAnalyzes) {
    activate();
    ZRMHandlerRecord record;
    service().startWithCompletionHandler(record.handler());
    device_.runUntilIdle();
    EXPECT_TRUE(record.succeededOnMain());
    EXPECT_EQ(first_->calls, std::vector<std::string>{"analyze"});
}

TEST_F(ZRMMobileServiceAnalysis, BeforeActivationIsError3AtOnce) {
    ZRMHandlerRecord record;
    service().analyzeEnvironmentWithCompletionHandler(record.handler());
    EXPECT_EQ(record.code(), 3);
}

TEST_F(ZRMMobileServiceAnalysis, AsksEveryServiceAndSucceedsOnTheMainQueue) {
    activate();
    ZRMHandlerRecord record;
    service().analyzeEnvironmentWithCompletionHandler(record.handler());
    EXPECT_EQ(record.count(), 0u);
    device_.runUntilIdle();
    EXPECT_TRUE(record.succeededOnMain());
    EXPECT_EQ(first_->calls, std::vector<std::string>{"analyze"});
    EXPECT_EQ(second_->calls, std::vector<std::string>{"analyze"});
}

TEST_F(ZRMMobileServiceAnalysis, SecondCallSucceedsAtOnce) {
    activate();
    ZRMHandlerRecord first;
    ZRMHandlerRecord second;
    service().analyzeEnvironmentWithCompletionHandler(first.handler());
    service().analyzeEnvironmentWithCompletionHandler(second.handler());
    EXPECT_EQ(second.count(), 1u);
    EXPECT_EQ(second.calls()[0].error, std::nullopt);
    device_.runUntilIdle();
    EXPECT_EQ(first_->calls, std::vector<std::string>{"analyze"});
}

TEST_F(ZRMMobileServiceAnalysis, FailureIsLoggedAndANewCallRunsAgain) {
    activate();
    second_->analysisError = error(6);
    ZRMHandlerRecord failed;
    service().analyzeEnvironmentWithCompletionHandler(failed.handler());
    device_.runUntilIdle();
    EXPECT_EQ(failed.code(), 6);
    EXPECT_TRUE(failed.onMainQueue());
    EXPECT_THAT(log_.errors(), Contains("error 6"));

    second_->analysisError = std::nullopt;
    ZRMHandlerRecord repeated;
    service().analyzeEnvironmentWithCompletionHandler(repeated.handler());
    device_.runUntilIdle();
    EXPECT_TRUE(repeated.succeededOnMain());
    EXPECT_EQ(first_->calls, (std::vector<std::string>{"analyze", "analyze"}));
}

TEST_F(ZRMMobileServiceAnalysis, ServiceThatIsNotRunningIsError3OnTheMainQueue) {
    activate();
    first_->running = false;
    ZRMHandlerRecord record;
    service().analyzeEnvironmentWithCompletionHandler(record.handler());
    EXPECT_EQ(record.count(), 0u);
    device_.runUntilIdle();
    EXPECT_EQ(record.code(), 3);
    EXPECT_TRUE(record.onMainQueue());
}

TEST_F(ZRMMobileServiceAnalysis, HandlerMayLetGoOfTheService) {
    activate();
    int calls = 0;
    service().analyzeEnvironmentWithCompletionHandler([&](const std::optional<ZRMError>&) {
        ++calls;
        service_.reset();
    });
    device_.runUntilIdle();
    EXPECT_EQ(calls, 1);
}
