#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/MemoryLogger/ZRMMemoryLoggerImpl.h"
#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMCloudKit/ZRMCloudKitAdapter.h"
#include "ZRMMobileKit/ZRMMobileKit_Tests/Support/ZRMFakeCloudKit.h"
#include "ZRMMobileKit/ZRMMobileKit_Tests/Support/ZRMHandlerRecord.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

using Event = ZRMMobileServiceEventType;
using Calls = std::vector<std::string>;

class ZRMCloudKitAdapterTest : public testing::Test {
  protected:
    ZRMCloudKitAdapterTest() {
        for (std::size_t event = 0; event < ZRMEventSettings::kEventCount; ++event) {
            settings_.events().setDisabled(static_cast<ZRMSwitchedEvent>(event), false);
        }
    }

    // A request that was not answered would keep the core that keeps it.
    void TearDown() override { core().locationRequests.clear(); }

    // The adapter takes the settings as they are at its first use.
    ZRMCloudKitAdapter& adapter() {
        if (adapter_ == nullptr) {
            adapter_ =
                std::make_shared<ZRMCloudKitAdapter>(device_.platform(), provider_, settings_);
        }
        return *adapter_;
    }
    void activate() {
        adapter().activateWithCompletionHandler([](const std::optional<ZRMError>&) {});
        core().calls.clear();
    }
    ZRMHandlerRecord send(Event event, std::optional<std::string> value = std::nullopt,
                          std::optional<std::string> result = std::nullopt,
                          std::optional<std::string> userId = std::nullopt) {
        ZRMHandlerRecord record;
        adapter().sendEvent(event, value, result, userId, record.handler());
        return record;
    }
    ZRMFakeCloudKit& core() { return *provider_->core; }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    ZRMMobileServiceSettings settings_ = ZRMMobileServiceSettings::defaultSettings();
    std::shared_ptr<ZRMFakeCloudKitProvider> provider_ =
        std::make_shared<ZRMFakeCloudKitProvider>(device_.platform());
    std::shared_ptr<ZRMCloudKitAdapter> adapter_;
};

struct Row {
    const char* name;
    Event event;
    ZRMSwitchedEvent theSwitch;
    const char* call;
    const char* callWithoutTexts;
};

const Row kRows[] = {
    {"Login", Event::UserLogin, ZRMSwitchedEvent::UserLogin, "login 'v' 'r' 'u'", "login '' '' ''"},
    {"Logout", Event::UserLogout, ZRMSwitchedEvent::UserLogout, "logout", "logout"},
    {"Navigation", Event::UINavigation, ZRMSwitchedEvent::UiNavigation, "navigation 'v'",
     "navigation ''"},
    {"SessionId", Event::SessionId, ZRMSwitchedEvent::SessionId, "session 'v'", "session ''"},
    {"Location", Event::GeoLocation, ZRMSwitchedEvent::Coordinates, "location 10.000000 10.000000",
     "location 10.000000 10.000000"},
};

class ZRMCloudKitAdapterEvent : public ZRMCloudKitAdapterTest,
                                public testing::WithParamInterface<Row> {};

struct AnalysisRow {
    ZRMSwitchedEvent theSwitch;
    const char* call;
};

const AnalysisRow kAnalysis[] = {
    {ZRMSwitchedEvent::ApplicationInfo, "md5"},
    {ZRMSwitchedEvent::Fingerprint, "fingerprint"},
    {ZRMSwitchedEvent::TouchIdChanged, "touchId"},
    {ZRMSwitchedEvent::DeviceJailbreak, "jailbreak"},
    {ZRMSwitchedEvent::ApplicationSignature, "signature"},
    {ZRMSwitchedEvent::Config, "config"},
    {ZRMSwitchedEvent::ScreenRecording, "screenRecording 1 60"},
    {ZRMSwitchedEvent::Vpn, "vpn"},
    {ZRMSwitchedEvent::Screenshot, "screenshot"},
};

Calls analysisWithout(std::optional<std::size_t> missing) {
    Calls calls;
    for (std::size_t index = 0; index < std::size(kAnalysis); ++index) {
        if (index != missing) {
            calls.emplace_back(kAnalysis[index].call);
        }
    }
    return calls;
}

class ZRMCloudKitAdapterAnalysis : public ZRMCloudKitAdapterTest,
                                   public testing::WithParamInterface<std::size_t> {};

}  // namespace

TEST_F(ZRMCloudKitAdapterTest, ActivationStartsTheCoreAndAnswersAtOnce) {
    EXPECT_FALSE(adapter().isRunning());
    ZRMHandlerRecord record;
    adapter().activateWithCompletionHandler(record.handler());
    EXPECT_EQ(record.count(), 1u);
    EXPECT_EQ(record.calls()[0].error, std::nullopt);
    EXPECT_TRUE(adapter().isRunning());
    EXPECT_EQ(core().calls, Calls{"start"});
}

TEST_F(ZRMCloudKitAdapterTest, SecondActivationSucceedsAndStartsNothing) {
    activate();
    ZRMHandlerRecord record;
    adapter().activateWithCompletionHandler(record.handler());
    EXPECT_EQ(record.count(), 1u);
    EXPECT_EQ(record.calls()[0].error, std::nullopt);
    EXPECT_THAT(core().calls, testing::IsEmpty());
    EXPECT_EQ(provider_->configurations.size(), 1u);
}

TEST_F(ZRMCloudKitAdapterTest, CoreThatRunsAlreadyIsNotStartedAgain) {
    activate();
    adapter_.reset();
    adapter().activateWithCompletionHandler([](const std::optional<ZRMError>&) {});
    EXPECT_TRUE(adapter().isRunning());
    EXPECT_THAT(core().calls, testing::IsEmpty());
}

TEST_F(ZRMCloudKitAdapterTest, CoreGetsItsConfigurationFromTheSettings) {
    settings_.urls().setCustomStatisticsUrl("https://own.example.com/stat?cid=own");
    settings_.urls().setSecureDeviceTagUrl("https://tag.example.com/t");
    device_.resourceBundles().put("ZRMMobileKitResources.bundle", "VelorinRootCA.crt", {1, 2, 3});
    activate();
    ASSERT_EQ(provider_->configurations.size(), 1u);
    const auto& configuration = provider_->configurations[0];
    EXPECT_EQ(configuration.appliedSettings, ZRMMobileServiceSettings::jsonFromSettings(settings_));
    EXPECT_EQ(configuration.statisticsUrl, "https://own.example.com/stat?cid=own");
    EXPECT_EQ(configuration.secureDeviceTagUrl, "https://tag.example.com/t");
    EXPECT_EQ(configuration.dataDirectory,
              std::string(ZRMSimulatedDirectories::kApplicationSupport) + "/com.example.host");
    EXPECT_EQ(configuration.clientId, "own");
    EXPECT_FALSE(configuration.alwaysSendTouchIdChangedStatistic);
    EXPECT_EQ(configuration.applicationMd5StatisticInterval, 86400);
    EXPECT_EQ(configuration.productName, "ZRMMobileKit");
    EXPECT_EQ(configuration.productVersion, "3.28.0.12");
    EXPECT_EQ(configuration.jwsRootCertificate, (ZRMData{1, 2, 3}));
    const auto& stored = device_.userDefaults().suites()["com.velorin.zrm.mobilekit.userdefaults"];
    EXPECT_EQ(configuration.execSessionId, std::get<std::string>(stored.at("ZRMExecSessionId")));
}

TEST_F(ZRMCloudKitAdapterTest, BundleWithoutIdentifierUsesTheSharedDirectory) {
    device_.mainBundle().setIdentifier(std::nullopt);
    activate();
    EXPECT_EQ(provider_->configurations.at(0).dataDirectory,
              ZRMSimulatedDirectories::kApplicationSupport);
}

TEST_F(ZRMCloudKitAdapterTest, MissingResourceBundleIsLoggedAndTheCertificateEmpty) {
    const ZRMRecordedLog log;
    activate();
    EXPECT_THAT(log.errors(),
                testing::Contains("Error: Bundle 'ZRMMobileKitResources.bundle' not found"));
    EXPECT_THAT(provider_->configurations.at(0).jwsRootCertificate, testing::IsEmpty());
}

TEST_F(ZRMCloudKitAdapterTest, BundleWithoutTheCertificateYieldsNone) {
    device_.resourceBundles().put("ZRMMobileKitResources.bundle", "other", {1});
    const ZRMRecordedLog log;
    activate();
    EXPECT_THAT(log.errors(), testing::IsEmpty());
    EXPECT_THAT(provider_->configurations.at(0).jwsRootCertificate, testing::IsEmpty());
}

TEST_F(ZRMCloudKitAdapterTest, CoreGetsTheServerTimeProvider) {
    const auto serverTime = std::make_shared<ZRMServerTimeProvider>(device_.platform()->clock);
    adapter().setServerTimeProvider(serverTime);
    activate();
    EXPECT_EQ(provider_->serverTimeProvider, serverTime);
}

TEST_F(ZRMCloudKitAdapterTest, SessionTimeoutOfTheSettingsCounts) {
    settings_.timeIntervals().setExecSessionTimeout(60);
    activate();
    device_.advanceBy(59);
    adapter_.reset();
    activate();
    device_.advanceBy(61);
    adapter_.reset();
    activate();
    const auto& configurations = provider_->configurations;
    EXPECT_EQ(configurations[0].execSessionId, configurations[1].execSessionId);
    EXPECT_NE(configurations[1].execSessionId, configurations[2].execSessionId);
}

TEST_F(ZRMCloudKitAdapterTest, StopEndsRunning) {
    activate();
    ZRMHandlerRecord record;
    adapter().stopWithCompletionHandler(record.handler());
    EXPECT_EQ(record.count(), 1u);
    EXPECT_FALSE(adapter().isRunning());
}

TEST_P(ZRMCloudKitAdapterEvent, GoesToTheCoreWithItsTexts) {
    activate();
    const auto record = send(GetParam().event, "v", "r", "u");
    device_.runUntilIdle();
    EXPECT_EQ(core().calls, Calls{GetParam().call});
    EXPECT_EQ(record.count(), 1u);
    EXPECT_EQ(record.calls()[0].error, std::nullopt);
}

TEST_P(ZRMCloudKitAdapterEvent, AbsentTextsGoAsEmptyOnes) {
    activate();
    const auto record = send(GetParam().event);
    device_.runUntilIdle();
    EXPECT_EQ(core().calls, Calls{GetParam().callWithoutTexts});
    EXPECT_EQ(record.calls().at(0).error, std::nullopt);
}

TEST_P(ZRMCloudKitAdapterEvent, DisabledEventIsError12AndSendsNothing) {
    settings_.events().setDisabled(GetParam().theSwitch, true);
    activate();
    const auto record = send(GetParam().event, "v", "r", "u");
    device_.runUntilIdle();
    EXPECT_EQ(record.code(), 12);
    EXPECT_EQ(record.calls()[0].error->localizedDescription(), "Event is disabled");
    EXPECT_THAT(core().calls, testing::IsEmpty());
}

TEST_P(ZRMCloudKitAdapterEvent, IsGovernedByItsOwnSwitchAlone) {
    for (std::size_t event = 0; event < ZRMEventSettings::kEventCount; ++event) {
        settings_.events().setDisabled(static_cast<ZRMSwitchedEvent>(event), true);
    }
    settings_.events().setDisabled(GetParam().theSwitch, false);
    activate();
    EXPECT_EQ(send(GetParam().event).calls().at(0).error, std::nullopt);
    for (const auto& other : kRows) {
        if (other.event != GetParam().event) {
            EXPECT_EQ(send(other.event).code(), 12) << other.name;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, ZRMCloudKitAdapterEvent, testing::ValuesIn(kRows),
                         [](const auto& instance) { return instance.param.name; });

TEST_F(ZRMCloudKitAdapterTest, KindThatDoesNotExistCompletesAndIsAnAssertion) {
    activate();
    for (const int kind : {5, 6, -1}) {
        ZRMHandlerRecord record;
        try {
            adapter().sendEvent(static_cast<Event>(kind), std::nullopt, std::nullopt, std::nullopt,
                                record.handler());
            ADD_FAILURE() << kind;
        } catch (const ZRMAssertionFailure& failure) {
            EXPECT_STREQ(failure.what(), "Unsupported event with value: ");
        }
        EXPECT_EQ(record.count(), 1u);
        EXPECT_EQ(record.calls()[0].error, std::nullopt);
    }
    EXPECT_THAT(core().calls, testing::IsEmpty());
}

TEST_F(ZRMCloudKitAdapterTest, LocationRequestsNeverOverlap) {
    activate();
    send(Event::GeoLocation);
    send(Event::GeoLocation);
    device_.runUntilIdle();
    ASSERT_EQ(core().locationRequests.size(), 1u);
    core().locationRequests[0](std::nullopt);
    device_.runUntilIdle();
    ASSERT_EQ(core().locationRequests.size(), 2u);
    core().locationRequests[1](std::nullopt);
    device_.runUntilIdle();
    EXPECT_EQ(core().locationRequests.size(), 2u);
}

TEST_F(ZRMCloudKitAdapterTest, ALocationThatIsStillBeingLookedForIsPendingButNotUnstored) {
    activate();
    send(Event::GeoLocation);
    send(Event::GeoLocation);
    device_.runUntilIdle();
    EXPECT_EQ(adapter().pendingEventCount(), 2u);
    EXPECT_EQ(adapter().unstoredEventCount(), 0u);
    core().locationRequests.at(0)(std::nullopt);
    device_.runUntilIdle();
    core().locationRequests.at(1)(std::nullopt);
    device_.runUntilIdle();
    EXPECT_EQ(adapter().pendingEventCount(), 0u);
}

TEST_F(ZRMCloudKitAdapterTest, LocationFailureIsLoggedAndTheNextRequestStillRuns) {
    const ZRMRecordedLog log;
    activate();
    send(Event::GeoLocation);
    send(Event::GeoLocation);
    device_.runUntilIdle();
    core().locationRequests.at(0)(ZRMError::withDescription("loc", 1, "denied by the user"));
    device_.runUntilIdle();
    EXPECT_THAT(log.errors(), testing::Contains("denied by the user"));
    ASSERT_EQ(core().locationRequests.size(), 2u);
    core().locationRequests[1](std::nullopt);
    EXPECT_THAT(log.verboses(), testing::Contains("Send location success"));
}

TEST_F(ZRMCloudKitAdapterTest, LocationQueueIsNamedAfterTheClass) {
    activate();
    std::vector<std::string> labels;
    for (const auto& queue : device_.executor().madeQueues()) {
        labels.push_back(queue.label);
    }
    EXPECT_THAT(labels, testing::Contains("ZRMCloudKitAdapter.queue"));
}

TEST_F(ZRMCloudKitAdapterTest, AnalysisAsksForNineKindsInOrderAndAnswersAtOnce) {
    activate();
    ZRMHandlerRecord record;
    adapter().analyzeEnvironmentWithCompletionHandler(record.handler());
    EXPECT_EQ(record.count(), 1u);
    EXPECT_EQ(record.calls()[0].error, std::nullopt);
    EXPECT_EQ(core().calls, analysisWithout(std::nullopt));
}

TEST_P(ZRMCloudKitAdapterAnalysis, LeavesADisabledKindOut) {
    settings_.events().setDisabled(kAnalysis[GetParam()].theSwitch, true);
    activate();
    adapter().analyzeEnvironmentWithCompletionHandler([](const std::optional<ZRMError>&) {});
    EXPECT_EQ(core().calls, analysisWithout(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(All, ZRMCloudKitAdapterAnalysis,
                         testing::Range<std::size_t>(0, std::size(kAnalysis)));

TEST_F(ZRMCloudKitAdapterTest, AnalysisWithDefaultSettingsLeavesSignatureAndConfigurationOut) {
    settings_ = ZRMMobileServiceSettings::defaultSettings();
    activate();
    adapter().analyzeEnvironmentWithCompletionHandler([](const std::optional<ZRMError>&) {});
    EXPECT_EQ(core().calls, (Calls{"md5", "fingerprint", "touchId", "jailbreak",
                                   "screenRecording 1 60", "vpn", "screenshot"}));
}

TEST_F(ZRMCloudKitAdapterTest, PoliciesOfTheSettingsGoToTheCore) {
    settings_.events().setScreenRecordingEventPolicy(ZRMScreenRecordingEventPolicy(7, 30));
    settings_.events().setCallInfoEventPolicy(ZRMCallInfoEventPolicy(0, 5));
    activate();
    adapter().analyzeEnvironmentWithCompletionHandler([](const std::optional<ZRMError>&) {});
    adapter().performAfterStartActionsWithCompletionHandler([](const std::optional<ZRMError>&) {});
    EXPECT_THAT(core().calls, testing::Contains("screenRecording 7 30"));
    EXPECT_THAT(core().calls, testing::Contains("callInfo 0 5"));
}

TEST_F(ZRMCloudKitAdapterTest, AbsentPoliciesLeaveTheDetectorsTheirOwn) {
    settings_.events().setScreenRecordingEventPolicy(std::nullopt);
    settings_.events().setCallInfoEventPolicy(std::nullopt);
    activate();
    adapter().analyzeEnvironmentWithCompletionHandler([](const std::optional<ZRMError>&) {});
    adapter().performAfterStartActionsWithCompletionHandler([](const std::optional<ZRMError>&) {});
    EXPECT_THAT(core().calls, testing::Contains("screenRecording 1 60"));
    EXPECT_THAT(core().calls, testing::Contains("callInfo 1 120"));
}

TEST_F(ZRMCloudKitAdapterTest, AfterStartObservesCallsUnlessDisabled) {
    settings_.events().disableLogDataEvent();
    activate();
    ZRMHandlerRecord record;
    adapter().performAfterStartActionsWithCompletionHandler(record.handler());
    EXPECT_EQ(record.count(), 1u);
    EXPECT_EQ(record.calls()[0].error, std::nullopt);
    EXPECT_EQ(core().calls, Calls{"callInfo 1 120"});

    adapter_.reset();
    settings_.events().disableCallInfoEvent();
    activate();
    adapter().performAfterStartActionsWithCompletionHandler(record.handler());
    EXPECT_EQ(record.count(), 2u);
    EXPECT_THAT(core().calls, testing::IsEmpty());
}

TEST_F(ZRMCloudKitAdapterTest, TagsAreTheCoresAndEmptyWithoutOne) {
    EXPECT_EQ(adapter().deviceTag(), "");
    EXPECT_EQ(adapter().secureDeviceTag(), "");
    EXPECT_EQ(adapter().pendingEventCount(), 0u);
    EXPECT_EQ(adapter().unstoredEventCount(), 0u);
    activate();
    core().tag = "tag";
    core().secureTag = "secure";
    core().pendingEvents = 4;
    core().unstoredEvents = 2;
    EXPECT_EQ(adapter().deviceTag(), "tag");
    EXPECT_EQ(adapter().secureDeviceTag(), "secure");
    EXPECT_EQ(adapter().pendingEventCount(), 4u);
    EXPECT_EQ(adapter().unstoredEventCount(), 2u);
}

namespace {

class ZRMCloudKitAdapterLogUpload : public ZRMCloudKitAdapterTest {
  protected:
    void startMonitor() {
        logger_->setLogLevel(kZRMLogLevelVerbose);
        adapter().observeMemoryLogger(logger_);
        activate();
        adapter().performAfterStartActionsWithCompletionHandler(
            [](const std::optional<ZRMError>&) {});
    }

    std::shared_ptr<ZRMMemoryLoggerImpl> logger_ = std::make_shared<ZRMMemoryLoggerImpl>(
        device_.platform()->consoleLog, device_.platform()->clock, device_.platform()->executor);
};

}  // namespace

TEST_F(ZRMCloudKitAdapterLogUpload, HandsTheLogToTheCoreEvery20Seconds) {
    startMonitor();
    logger_->logMessage("line", kZRMLogLevelVerbose);
    device_.advanceBy(19.9);
    EXPECT_THAT(core().logs, testing::IsEmpty());
    device_.advanceBy(0.1);
    ASSERT_EQ(core().logs.size(), 1u);
    EXPECT_EQ(core().logs[0].size(), 1u);
    device_.advanceBy(20);
    EXPECT_EQ(core().logs.size(), 2u);
}

TEST_F(ZRMCloudKitAdapterLogUpload, HandsTheLogOverBeforeThatAt204800Bytes) {
    startMonitor();
    logger_->logMessage(std::string(204800 - 60, 'x'), kZRMLogLevelVerbose);
    EXPECT_THAT(core().logs, testing::IsEmpty());
    logger_->logMessage(std::string(60, 'x'), kZRMLogLevelVerbose);
    EXPECT_EQ(core().logs.size(), 1u);
    EXPECT_EQ(core().logs[0].size(), 2u);
}

TEST_F(ZRMCloudKitAdapterLogUpload, EnvironmentVariableOverridesTheInterval) {
    device_.processEnvironment().setVariable("kZRMMemoryLoggerTimeInterval", "2.5");
    startMonitor();
    device_.advanceBy(2.4);
    EXPECT_THAT(core().logs, testing::IsEmpty());
    device_.advanceBy(0.1);
    EXPECT_EQ(core().logs.size(), 1u);
}

TEST_F(ZRMCloudKitAdapterLogUpload, VariableThatIsNoPositiveNumberLeavesTheInterval) {
    for (const auto* text : {"", "soon", "0", "-5", "inf", "nan"}) {
        device_.processEnvironment().setVariable("kZRMMemoryLoggerTimeInterval", text);
        adapter_.reset();
        core().logs.clear();
        startMonitor();
        device_.advanceBy(19.9);
        EXPECT_THAT(core().logs, testing::IsEmpty()) << text;
        device_.advanceBy(0.1);
        EXPECT_EQ(core().logs.size(), 1u) << text;
    }
}

TEST_F(ZRMCloudKitAdapterLogUpload, NothingIsUploadedWhenTheEventIsDisabled) {
    settings_.events().disableLogDataEvent();
    startMonitor();
    logger_->logMessage(std::string(300000, 'x'), kZRMLogLevelVerbose);
    device_.advanceBy(100);
    EXPECT_THAT(core().logs, testing::IsEmpty());
}

TEST_F(ZRMCloudKitAdapterLogUpload, NothingIsUploadedWithoutAMemoryLogger) {
    activate();
    adapter().performAfterStartActionsWithCompletionHandler([](const std::optional<ZRMError>&) {});
    device_.advanceBy(100);
    EXPECT_THAT(core().logs, testing::IsEmpty());
}

TEST_F(ZRMCloudKitAdapterLogUpload, EndsWithTheAdapter) {
    startMonitor();
    adapter_.reset();
    device_.advanceBy(100);
    EXPECT_THAT(core().logs, testing::IsEmpty());
}
