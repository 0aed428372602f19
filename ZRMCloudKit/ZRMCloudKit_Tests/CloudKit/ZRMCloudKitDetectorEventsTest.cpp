// The events that the library's own detectors lead to.
#include "ZRMCloudKit/ZRMCloudKit_Tests/Support/ZRMCloudKitFixture.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class ZRMDetectorEvents : public ZRMCloudKitFixture {
  protected:
    ZRMDetectorEvents() {
        detectors_ = zrm_makeCloudKitDetectors(device_.platform());
        detectors_.makeSecureDeviceTagProvider = nullptr;
        core_ = makeStartedCore();
    }

    void post(ZRMApplicationNotification notification) {
        device_.notifications().post(notification);
        device_.runUntilIdle();
    }
    void update(const ZRMCall& call) {
        device_.calls().update(call);
        device_.runUntilIdle();
    }
    void setCaptured(bool captured) {
        ZRMScreen screen;
        screen.isCaptured = captured;
        device_.screens().setScreens({screen});
    }
    [[nodiscard]] std::vector<std::int16_t> sentPriorities() const {
        std::vector<std::int16_t> priorities;
        for (const auto& sent : service_->sent) {
            priorities.push_back(sent.priority);
        }
        return priorities;
    }
    // One member of every event sent so far.
    [[nodiscard]] std::vector<ZRMJsonValue> sentValues(const char* key) const {
        std::vector<ZRMJsonValue> values;
        for (std::size_t index = 0; index < service_->sent.size(); ++index) {
            values.push_back(sentBody(index).at(key));
        }
        return values;
    }

    std::shared_ptr<ZRMCloudKitImpl> core_;
};

TEST_F(ZRMDetectorEvents, TellOfCallsInTheirThreeStages) {
    ZRMCall ringing;
    ringing.uuid = "A";
    device_.calls().update(ringing);
    core_->sendCallInfoEventWithPolicy({1, 120});
    EXPECT_THAT(service_->sent, IsEmpty());
    device_.runUntilIdle();
    auto connected = ringing;
    connected.hasConnected = true;
    update(connected);
    update(connected);
    device_.advanceBy(500);
    EXPECT_THAT(sentTypes(),
                ElementsAre("IOSCallInfoEvent", "IOSCallInfoEvent", "IOSCallInfoEvent"));
    EXPECT_THAT(sentPriorities(), Each(1));
    EXPECT_THAT(sentValues("stage"), ElementsAre(0, 1, 2));
    EXPECT_FALSE(sentBody(0).contains("changedCall"));
    EXPECT_EQ(sentBody(0).at("calls").at(0).at("hasConnected"), false);
    for (const std::size_t stage : {1U, 2U}) {
        EXPECT_EQ(sentBody(stage).at("changedCall").at("uuid"), "A");
        EXPECT_EQ(sentBody(stage).at("changedCall").at("hasConnected"), true);
        EXPECT_EQ(sentBody(stage).at("calls").as_array().size(), 1U);
    }
}

TEST_F(ZRMDetectorEvents, DoNotTellOfACallUnderWayAsChanged) {
    ZRMCall connected;
    connected.uuid = "A";
    connected.hasConnected = true;
    device_.calls().update(connected);
    core_->sendCallInfoEventWithPolicy({1, 120});
    device_.advanceBy(500);
    EXPECT_THAT(sentValues("stage"), ElementsAre(0, 2));
}

TEST_F(ZRMDetectorEvents, TellOfARecordingAtOnceAndAsOftenAsThePolicySays) {
    setCaptured(true);
    core_->sendScreenRecordingEventWithPolicy({2, 5});
    device_.advanceBy(100);
    setCaptured(false);
    post(ZRMApplicationNotification::ScreenCapturedDidChange);
    EXPECT_THAT(sentTypes(), Each("ScreenRecordingEvent"));
    EXPECT_THAT(sentPriorities(), Each(1));
    EXPECT_THAT(sentValues("isRecording"), ElementsAre(true, true, true, false));
}

TEST_F(ZRMDetectorEvents, TellOfARecordingNoLongerTwiceWhenAskedAgain) {
    core_->sendScreenRecordingEventWithPolicy({0, 5});
    device_.runUntilIdle();
    core_->sendScreenRecordingEventWithPolicy({0, 5});
    device_.runUntilIdle();
    EXPECT_THAT(service_->sent, SizeIs(2));
    post(ZRMApplicationNotification::ScreenDidConnect);
    EXPECT_THAT(service_->sent, SizeIs(3));
}

TEST_F(ZRMDetectorEvents, TellOfEachScreenshot) {
    core_->sendScreenshotEvent();
    device_.runUntilIdle();
    EXPECT_THAT(service_->sent, IsEmpty());
    post(ZRMApplicationNotification::UserDidTakeScreenshot);
    post(ZRMApplicationNotification::UserDidTakeScreenshot);
    EXPECT_THAT(sentTypes(), ElementsAre("iOSScreenshotEvent", "iOSScreenshotEvent"));
    EXPECT_THAT(sentPriorities(), Each(3));
    EXPECT_THAT(sentValues("screenshot"), Each(true));
}

TEST_F(ZRMDetectorEvents, TellOfTheVpnAtOnceAndOfChangesSeenInTheForeground) {
    core_->sendVpnEvent();
    device_.runUntilIdle();
    device_.networkInterfaces().scoped = {{"en0", "utun2"}};
    device_.advanceBy(100);
    EXPECT_THAT(sentValues("transportVpn"), ElementsAre(false));
    post(ZRMApplicationNotification::WillEnterForeground);
    post(ZRMApplicationNotification::WillEnterForeground);
    EXPECT_THAT(sentTypes(), ElementsAre("VPNEvent", "VPNEvent"));
    EXPECT_THAT(sentPriorities(), Each(3));
    EXPECT_THAT(sentValues("transportVpn"), ElementsAre(false, true));
}

}  // namespace
