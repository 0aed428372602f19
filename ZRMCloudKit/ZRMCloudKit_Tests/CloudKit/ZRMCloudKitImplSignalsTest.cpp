#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitErrors.h"
#include "ZRMCloudKit/ZRMCloudKit_Tests/Support/ZRMCloudKitFixture.h"
#include "ZRMCloudKit/ZRMCloudKit_Tests/Support/ZRMFakeDetectors.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

class ZRMCloudKitSignals : public ZRMCloudKitFixture {};

TEST_F(ZRMCloudKitSignals, DoNothingButOneVerboseLineWhenTheirDetectorIsAbsent) {
    const auto core = makeStartedCore();
    const std::vector<std::pair<std::function<void()>, std::string>> cases{
        {[&] { core->sendFingerprint(); }, "The device fingerprint is not available"},
        {[&] { core->sendDeviceJailbreak(); }, "Jailbreak detection is not available"},
        {[&] { core->sendApplicationSignature(); },
         "The application's code signature is not available"},
        {[&] { core->sendApplicationMd5(); }, "The application bundle's digest is not available"},
        {[&] { core->sendTouchIdChanged(); }, "The biometric state is not available"},
        {[&] {
             core->sendScreenRecordingEventWithPolicy(
                 ZRMScreenRecordingEventPolicy::defaultPolicy());
         },
         "Screen recording detection is not available"},
        {[&] { core->sendCallInfoEventWithPolicy(ZRMCallInfoEventPolicy::defaultPolicy()); },
         "Call observation is not available"},
        {[&] { core->sendVpnEvent(); }, "VPN detection is not available"},
        {[&] { core->sendScreenshotEvent(); }, "Screenshot detection is not available"},
    };
    for (const auto& [call, line] : cases) {
        const ZRMRecordedLog log;
        call();
        device_.runUntilIdle();
        EXPECT_THAT(log.verboses(), ElementsAre(line));
        EXPECT_THAT(log.errors(), IsEmpty());
    }
    EXPECT_THAT(service_->sent, IsEmpty());
}

TEST_F(ZRMCloudKitSignals, SendWhatTheirSourcesTellFromTheCoresQueue) {
    detectors_.fingerprint = std::make_shared<ZRMFakeEventSource>("FingerprintEvent");
    auto own = zrm_makeCloudKitDetectors(device_.platform());
    detectors_.makeJailbreakDetectors = own.makeJailbreakDetectors;
    detectors_.dyldWatcher = own.dyldWatcher;
    detectors_.codeSignatureWatcher = own.codeSignatureWatcher;
    const auto core = makeStartedCore();
    core->sendFingerprint();
    core->sendDeviceJailbreak();
    core->sendApplicationSignature();
    EXPECT_THAT(service_->sent, IsEmpty());
    device_.runUntilIdle();
    // The core's queue runs them side by side.
    EXPECT_THAT(sentTypes(), UnorderedElementsAre("FingerprintEvent", "DeviceJailbreakEvent",
                                                  "IOSApplicationSignatureEvent"));
    for (std::size_t index = 0; index < 3; ++index) {
        EXPECT_EQ(sentPriority(index), 3);
        EXPECT_TRUE(sentBody(index).contains("environmentData"));
    }
}

TEST_F(ZRMCloudKitSignals, SendTheFingerprintOfTheMomentFromTheCoresQueue) {
    detectors_ = zrm_makeCloudKitDetectors(device_.platform());
    const auto core = makeStartedCore();
    core->sendFingerprint();
    EXPECT_THAT(service_->sent, IsEmpty());
    EXPECT_EQ(device_.power().monitoringChanges, 0);
    device_.runUntilIdle();
    ASSERT_THAT(sentTypes(), ElementsAre("IOSFingerprintEvent"));
    EXPECT_EQ(sentPriority(0), 3);
    EXPECT_EQ(sentBody(0).at("bundleIdentifier"), "com.example.host");
    EXPECT_EQ(sentBody(0).at("ipAddress3"), 108736);
    EXPECT_EQ(sentBody(0).at("ipv6"), "");
    EXPECT_EQ(sentBody(0).at("wiFiSSID"), "Café Central");

    device_.wifi().network = std::nullopt;
    device_.networkInterfaces().list = std::nullopt;
    core->sendFingerprint();
    device_.runUntilIdle();
    EXPECT_EQ(sentBody(1).at("ipAddress3"), 0);
    EXPECT_EQ(sentBody(1).at("wiFiSSID"), "");
}

TEST_F(ZRMCloudKitSignals, AskTheJailbreakDetectorsOfFilesUrlSchemesAndSystemCall) {
    detectors_ = zrm_makeCloudKitDetectors(device_.platform());
    std::uint32_t askedMask = 0;
    detectors_.makeJailbreakDetectors = [&](std::uint32_t mask) {
        askedMask = mask;
        return ZRMDeviceJailbreakDetectorCollection::collectionWithDetectors(*device_.platform(),
                                                                             mask);
    };
    const auto core = makeStartedCore();
    core->sendDeviceJailbreak();
    device_.runUntilIdle();
    EXPECT_EQ(askedMask, 13U);
}

class ZRMApplicationMd5 : public ZRMCloudKitFixture {
  protected:
    std::shared_ptr<ZRMFakeBundleHasher> hasher_ =
        std::make_shared<ZRMFakeBundleHasher>(ZRMData(16, 0xAB));
    ZRMApplicationMd5() { detectors_.bundleHasher = hasher_; }
};

TEST_F(ZRMApplicationMd5, IsSentAtOnceByANewInstallationAndThenOnceAnInterval) {
    const auto core = makeStartedCore();
    core->sendApplicationMd5();
    EXPECT_THAT(service_->sent, IsEmpty());
    device_.runUntilIdle();
    ASSERT_THAT(sentTypes(), ElementsAre("ApplicationInfoEvent"));
    EXPECT_EQ(sentPriority(0), 3);
    EXPECT_EQ(sentBody(0).at("applicationMd5"), "abababababababababababababababab");
    EXPECT_THAT(hasher_->paths, ElementsAre(device_.mainBundle().path()));
    EXPECT_EQ(core->settings()->applicationMd5SendDate(), device_.now());

    device_.advanceBy(86399);
    core->sendApplicationMd5StatisticIfNeeded();
    device_.runUntilIdle();
    EXPECT_EQ(service_->sent.size(), 1U);
    device_.advanceBy(1);
    core->sendApplicationMd5StatisticIfNeeded();
    device_.runUntilIdle();
    EXPECT_EQ(service_->sent.size(), 2U);
}

TEST_F(ZRMApplicationMd5, KeepsItsSendDateOverARestart) {
    auto core = makeStartedCore();
    core->sendApplicationMd5();
    device_.runUntilIdle();
    EXPECT_EQ(service_->sent.size(), 1U);
    device_.restartProcess();
    core = makeStartedCore();
    core->sendApplicationMd5();
    device_.runUntilIdle();
    EXPECT_EQ(service_->sent.size(), 1U);
}

TEST_F(ZRMApplicationMd5, FollowsTheConfiguredInterval) {
    configuration_.applicationMd5StatisticInterval = 10;
    const auto core = makeStartedCore();
    for (int round = 0; round < 3; ++round) {
        core->sendApplicationMd5();
        device_.advanceBy(10);
    }
    EXPECT_EQ(service_->sent.size(), 3U);
}

TEST_F(ZRMApplicationMd5, LogsAMissingDigestAndLeavesTheSendDate) {
    hasher_->md5 = std::nullopt;
    const auto core = makeStartedCore();
    const ZRMRecordedLog log;
    core->sendApplicationMd5();
    device_.runUntilIdle();
    EXPECT_THAT(log.verboses(), ElementsAre("Application bundle md5 data is nil"));
    EXPECT_THAT(service_->sent, IsEmpty());
    EXPECT_EQ(core->settings()->applicationMd5SendDate(), ZRMDate{0});
}

class ZRMTouchIdChange : public ZRMCloudKitFixture {
  protected:
    void ask(const std::shared_ptr<ZRMCloudKitImpl>& core) {
        core->sendTouchIdChanged();
        device_.runUntilIdle();
    }
    ZRMDictionary flags(std::size_t index) {
        const auto& body = sentBody(index);
        return {{"touchIdAvailable", body.at("touchIdAvailable")},
                {"touchIdEnabled", body.at("touchIdEnabled")},
                {"touchIdChanged", body.at("touchIdChanged")}};
    }
    std::shared_ptr<ZRMFakeTouchId> touchId_ =
        std::make_shared<ZRMFakeTouchId>(ZRMTouchIdInfo(true, false, ZRMData{1}));
    ZRMTouchIdChange() { detectors_.touchId = touchId_; }
};

TEST_F(ZRMTouchIdChange, IsReportedUnchangedTheFirstTimeAndStored) {
    const auto core = makeStartedCore();
    core->sendTouchIdChanged();
    EXPECT_THAT(service_->sent, IsEmpty());
    device_.runUntilIdle();
    ASSERT_THAT(sentTypes(), ElementsAre("TouchIdChangedEvent"));
    EXPECT_EQ(sentPriority(0), 3);
    EXPECT_EQ(flags(0), (ZRMDictionary{{"touchIdAvailable", true},
                                       {"touchIdEnabled", false},
                                       {"touchIdChanged", false}}));
    EXPECT_EQ(core->settings()->touchIdDomainState(), touchId_->current);
}

TEST_F(ZRMTouchIdChange, IsNotReportedForTheSameStateNotEvenAfterARestart) {
    auto core = makeStartedCore();
    ask(core);
    device_.restartProcess();
    core = makeStartedCore();
    const ZRMRecordedLog log;
    ask(core);
    EXPECT_EQ(service_->sent.size(), 1U);
    EXPECT_THAT(log.verboses(), ElementsAre("TouchId has not been changed since last time."));
}

TEST_F(ZRMTouchIdChange, IsReportedChangedForAnotherStateAndThenStored) {
    const auto core = makeStartedCore();
    ask(core);
    touchId_->current = ZRMTouchIdInfo(true, true, ZRMData{2});
    ask(core);
    ASSERT_EQ(service_->sent.size(), 2U);
    EXPECT_EQ(flags(1),
              (ZRMDictionary{
                  {"touchIdAvailable", true}, {"touchIdEnabled", true}, {"touchIdChanged", true}}));
    EXPECT_EQ(core->settings()->touchIdDomainState(), touchId_->current);
    ask(core);
    EXPECT_EQ(service_->sent.size(), 2U);
}

TEST_F(ZRMTouchIdChange, IsReportedChangedEachTimeWhenAlwaysSentEvenForTheSameState) {
    configuration_.alwaysSendTouchIdChangedStatistic = true;
    const auto core = makeStartedCore();
    ask(core);
    ask(core);
    ASSERT_EQ(service_->sent.size(), 2U);
    EXPECT_EQ(sentBody(0).at("touchIdChanged"), false);
    EXPECT_EQ(sentBody(1).at("touchIdChanged"), true);
}

class ZRMScreenRecordingSignal : public ZRMCloudKitFixture {
  protected:
    std::vector<std::shared_ptr<ZRMFakeScreenRecordingDetector>> made_;
    ZRMScreenRecordingSignal() {
        detectors_.makeScreenRecordingDetector = [this](const auto& policy) {
            made_.push_back(std::make_shared<ZRMFakeScreenRecordingDetector>(policy));
            return made_.back();
        };
    }
};

TEST_F(ZRMScreenRecordingSignal, StartsADetectorWithThePolicyAndSendsEachOfItsReports) {
    const auto core = makeStartedCore();
    core->sendScreenRecordingEventWithPolicy({3, 7});
    EXPECT_THAT(made_, IsEmpty());
    device_.runUntilIdle();
    ASSERT_EQ(made_.size(), 1U);
    EXPECT_EQ(made_[0]->policy, ZRMScreenRecordingEventPolicy(3, 7));
    EXPECT_THAT(service_->sent, IsEmpty());
    made_[0]->report(true);
    made_[0]->report(false);
    EXPECT_THAT(sentTypes(), ElementsAre("ScreenRecordingEvent", "ScreenRecordingEvent"));
    EXPECT_EQ(sentPriority(0), 1);
    EXPECT_EQ(sentPriority(1), 1);
    EXPECT_EQ(sentBody(0).at("isRecording"), true);
    EXPECT_EQ(sentBody(1).at("isRecording"), false);
}

TEST_F(ZRMScreenRecordingSignal, ReplacesTheKeptDetectorWhenAskedAgain) {
    const auto core = makeStartedCore();
    core->sendScreenRecordingEventWithPolicy({1, 1});
    device_.runUntilIdle();
    const std::weak_ptr<ZRMFakeScreenRecordingDetector> first = made_[0];
    made_.clear();
    EXPECT_FALSE(first.expired());
    core->sendScreenRecordingEventWithPolicy({2, 2});
    device_.runUntilIdle();
    EXPECT_TRUE(first.expired());
}

TEST_F(ZRMScreenRecordingSignal, SendsNothingOnceTheCoreIsGone) {
    auto core = makeStartedCore();
    requests_.clear();
    core->sendScreenRecordingEventWithPolicy({1, 1});
    device_.runUntilIdle();
    core.reset();
    made_[0]->report(true);
    EXPECT_THAT(service_->sent, IsEmpty());
}

TEST_F(ZRMCloudKitSignals, StartCallObservationAndReportCallsInTheirThreeStages) {
    const auto observer = std::make_shared<ZRMFakeCallObserver>();
    ZRMCall call;
    call.uuid = "U";
    observer->current = {call};
    detectors_.callObserver = observer;
    const auto core = makeStartedCore();
    core->sendCallInfoEventWithPolicy({4, 5});
    EXPECT_THAT(observer->steps, IsEmpty());
    device_.runUntilIdle();
    EXPECT_THAT(observer->steps, ElementsAre("setDelegate", "setEventPolicy", "start"));
    EXPECT_EQ(observer->policy, ZRMCallInfoEventPolicy(4, 5));
    const auto delegate = observer->delegate.lock();
    ASSERT_TRUE(delegate);
    delegate->connectedCallChanged(*observer, call);
    observer->current = {};
    delegate->connectedCallStillActive(*observer, call);
    EXPECT_THAT(sentTypes(),
                ElementsAre("IOSCallInfoEvent", "IOSCallInfoEvent", "IOSCallInfoEvent"));
    for (std::size_t stage = 0; stage < 3; ++stage) {
        EXPECT_EQ(sentPriority(stage), 1);
        EXPECT_EQ(sentBody(stage).at("stage"), stage);
        EXPECT_EQ(sentBody(stage).contains("changedCall"), stage > 0);
        EXPECT_EQ(sentBody(stage).at("calls").as_array().size(), stage < 2 ? 1U : 0U);
    }
}

TEST_F(ZRMCloudKitSignals, ReportTheVpnAtOnceAndThenEachChange) {
    std::vector<std::shared_ptr<ZRMFakeVpnDetector>> made;
    detectors_.makeVpnDetector = [&made] {
        made.push_back(std::make_shared<ZRMFakeVpnDetector>(made.empty()));
        return made.back();
    };
    const auto core = makeStartedCore();
    core->sendVpnEvent();
    EXPECT_THAT(made, IsEmpty());
    device_.runUntilIdle();
    ASSERT_EQ(made.size(), 1U);
    made[0]->report(false);
    EXPECT_THAT(sentTypes(), ElementsAre("VPNEvent", "VPNEvent"));
    EXPECT_EQ(sentPriority(0), 3);
    EXPECT_EQ(sentBody(0).at("transportVpn"), true);
    EXPECT_EQ(sentBody(1).at("transportVpn"), false);
    const std::weak_ptr<ZRMFakeVpnDetector> first = made[0];
    made[0].reset();
    core->sendVpnEvent();
    device_.runUntilIdle();
    EXPECT_TRUE(first.expired());
}

// Tells of a change as soon as it is started.
class HastyVpnDetector final : public ZRMVpnDetecting {
  public:
    [[nodiscard]] bool isVpnConnected() const override { return true; }
    void startDetection(std::function<void(bool)> completionHandler) override {
        completionHandler(false);
    }
};

TEST_F(ZRMCloudKitSignals, ReportTheVpnBeforeItsDetectionBegins) {
    detectors_.makeVpnDetector = [] { return std::make_shared<HastyVpnDetector>(); };
    const auto core = makeStartedCore();
    core->sendVpnEvent();
    device_.runUntilIdle();
    ASSERT_THAT(sentTypes(), ElementsAre("VPNEvent", "VPNEvent"));
    EXPECT_EQ(sentBody(0).at("transportVpn"), true);
    EXPECT_EQ(sentBody(1).at("transportVpn"), false);
}

TEST_F(ZRMCloudKitSignals, ReportEachScreenshotAndNothingBefore) {
    const auto detector = std::make_shared<ZRMFakeScreenshotDetector>();
    detectors_.makeScreenshotDetector = [&detector] { return detector; };
    const auto core = makeStartedCore();
    core->sendScreenshotEvent();
    EXPECT_FALSE(detector->report);
    device_.runUntilIdle();
    EXPECT_THAT(service_->sent, IsEmpty());
    detector->report();
    detector->report();
    EXPECT_THAT(sentTypes(), ElementsAre("iOSScreenshotEvent", "iOSScreenshotEvent"));
    EXPECT_EQ(sentPriority(0), 3);
    EXPECT_EQ(sentBody(1).at("screenshot"), true);
}

class ZRMLocationSignal : public ZRMCloudKitFixture {
  protected:
    // What the completion handlers received, and whether they ran on the main queue.
    struct Completed {
        std::optional<ZRMError> error;
        bool onMainQueue;
    };

    void request(const std::shared_ptr<ZRMCloudKitImpl>& core, double accuracy, double duration) {
        core->sendDeviceCoordinatesWithAccuracy(
            accuracy, duration, [this](std::optional<ZRMError> error) {
                completed_.push_back(
                    {std::move(error), device_.platform()->executor->mainQueue()->isCurrent()});
            });
    }
    void provideLocator() {
        detectors_.makeDeviceLocator = [this](double accuracy, double duration) {
            EXPECT_TRUE(device_.platform()->executor->mainQueue()->isCurrent());
            made_.emplace_back(accuracy, duration);
            return locator_;
        };
    }

    std::vector<Completed> completed_;
    std::vector<std::pair<double, double>> made_;
    std::shared_ptr<ZRMFakeDeviceLocator> locator_ =
        std::make_shared<ZRMFakeDeviceLocator>(device_.platform()->consoleLog);
};

TEST_F(ZRMLocationSignal, EndsWithAnErrorOnTheCoresQueueWhenThereIsNoLocator) {
    const auto core = makeStartedCore();
    const ZRMRecordedLog log;
    request(core, 10, 10);
    EXPECT_THAT(completed_, IsEmpty());
    device_.runUntilIdle();
    ASSERT_EQ(completed_.size(), 1U);
    ASSERT_TRUE(completed_[0].error);
    EXPECT_EQ(completed_[0].error->domain(), kZRMCloudKitErrorDomain);
    EXPECT_EQ(completed_[0].error->code(), ZRMCloudKitErrorLocationNotAvailable);
    EXPECT_EQ(completed_[0].error->localizedDescription(),
              "The device's location is not available.");
    EXPECT_FALSE(completed_[0].onMainQueue);
    EXPECT_THAT(log.verboses(), ElementsAre("The device's location is not available"));
    EXPECT_THAT(service_->sent, IsEmpty());
}

TEST_F(ZRMLocationSignal, SendsTheEventThenCompletesOnTheCoresQueue) {
    provideLocator();
    const auto core = makeStartedCore();
    request(core, 10, 20);
    EXPECT_THAT(made_, IsEmpty());
    device_.runUntilIdle();
    EXPECT_THAT(made_, ElementsAre(std::pair(10.0, 20.0)));
    ASSERT_EQ(locator_->detections.size(), 1U);
    EXPECT_THAT(completed_, IsEmpty());
    EXPECT_THAT(service_->sent, IsEmpty());
    locator_->detections[0]->end(std::nullopt);
    device_.runUntilIdle();
    EXPECT_THAT(sentTypes(), ElementsAre("IOSGeoLocationEvent"));
    EXPECT_EQ(sentPriority(0), 2);
    ASSERT_EQ(completed_.size(), 1U);
    EXPECT_EQ(completed_[0].error, std::nullopt);
    EXPECT_FALSE(completed_[0].onMainQueue);
}

TEST_F(ZRMLocationSignal, SendsTheEventWithoutALocationAndPassesOnTheReason) {
    provideLocator();
    const auto core = makeStartedCore();
    request(core, 10, 10);
    device_.runUntilIdle();
    const ZRMError denied("kCLErrorDomain", 1);
    locator_->detections[0]->end(denied);
    device_.runUntilIdle();
    EXPECT_EQ(service_->sent.size(), 1U);
    ASSERT_EQ(completed_.size(), 1U);
    EXPECT_EQ(completed_[0].error, denied);
}

TEST_F(ZRMLocationSignal, ReusesTheLocatorWithItsFirstAccuracyAndDuration) {
    provideLocator();
    const auto core = makeStartedCore();
    request(core, 10, 20);
    device_.runUntilIdle();
    request(core, 1000, 1);
    device_.runUntilIdle();
    EXPECT_THAT(made_, ElementsAre(std::pair(10.0, 20.0)));
    ASSERT_EQ(locator_->detections.size(), 2U);
    locator_->detections[1]->end(std::nullopt);
    locator_->detections[0]->end(std::nullopt);
    device_.runUntilIdle();
    EXPECT_EQ(completed_.size(), 2U);
}

TEST_F(ZRMLocationSignal, CompletesWithAnErrorWhenTheCoreIsGoneBeforeItBegan) {
    provideLocator();
    auto core = makeStartedCore();
    requests_.clear();
    request(core, 10, 10);
    core.reset();
    device_.runUntilIdle();
    ASSERT_EQ(completed_.size(), 1U);
    EXPECT_EQ(completed_[0].error->code(), ZRMCloudKitErrorLocationNotAvailable);
    EXPECT_THAT(made_, IsEmpty());
}

TEST_F(ZRMLocationSignal, StillCompletesWhenTheCoreIsGoneMeanwhile) {
    provideLocator();
    auto core = makeStartedCore();
    requests_.clear();
    request(core, 10, 10);
    device_.runUntilIdle();
    core.reset();
    locator_->detections[0]->end(std::nullopt);
    device_.runUntilIdle();
    EXPECT_EQ(completed_.size(), 1U);
    EXPECT_THAT(service_->sent, IsEmpty());
}

}  // namespace
