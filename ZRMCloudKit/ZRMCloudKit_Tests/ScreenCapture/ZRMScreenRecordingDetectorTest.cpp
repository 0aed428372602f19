#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/ScreenCapture/ZRMScreenRecordingDetector.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class ZRMScreenRecording : public testing::Test {
  protected:
    struct Report {
        double atSeconds;  // since the test began
        bool recording;
        friend bool operator==(const Report&, const Report&) = default;
    };

    std::shared_ptr<ZRMScreenRecordingDetector> makeDetector(
        const ZRMScreenRecordingEventPolicy& policy) {
        const auto platform = device_.platform();
        return std::make_shared<ZRMScreenRecordingDetector>(
            policy, platform->screens, platform->notifications,
            platform->executor->concurrentQueue(ZRMQualityOfService::Default));
    }
    std::shared_ptr<ZRMScreenRecordingDetector> makeStartedDetector(
        const ZRMScreenRecordingEventPolicy& policy) {
        auto detector = makeDetector(policy);
        detector->startDetection([this](bool recording) {
            reports_.push_back({device_.now().secondsSince(begin_), recording});
            onMainQueue_.push_back(device_.platform()->executor->mainQueue()->isCurrent());
        });
        return detector;
    }
    void setRecording(bool recording) {
        ZRMScreen screen;
        screen.isCaptured = recording;
        device_.screens().setScreens({screen});
    }
    void post(ZRMApplicationNotification notification) {
        device_.notifications().post(notification);
        device_.runUntilIdle();
    }
    void captureChanged(bool recording) {
        setRecording(recording);
        post(ZRMApplicationNotification::ScreenCapturedDidChange);
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    const ZRMDate begin_ = device_.now();
    std::vector<Report> reports_;
    std::vector<bool> onMainQueue_;
};

TEST_F(ZRMScreenRecording, IsReportedByTheStartItself) {
    const auto detector = makeStartedDetector({0, 5});
    EXPECT_THAT(reports_, ElementsAre(Report{0, false}));
}

TEST_F(ZRMScreenRecording, ThatNeverStopsIsReportedAtOnceAndAfterEachInterval) {
    setRecording(true);
    const auto detector = makeStartedDetector({2, 5});
    device_.advanceBy(3600);
    EXPECT_THAT(reports_, ElementsAre(Report{0, true}, Report{5, true}, Report{10, true}));
    EXPECT_EQ(detector->numberOfRemainingRetryAttempts(), 0U);
}

TEST_F(ZRMScreenRecording, IsReportedAgainByTheNextScreenEventAfterTheAttemptsAreUsedUp) {
    setRecording(true);
    const auto detector = makeStartedDetector({1, 5});
    device_.advanceBy(100);
    post(ZRMApplicationNotification::ScreenCapturedDidChange);
    device_.advanceBy(100);
    EXPECT_THAT(reports_, ElementsAre(Report{0, true}, Report{5, true}, Report{100, true}));
}

TEST_F(ZRMScreenRecording, ThatStopsBetweenRetriesIsReportedStoppedAndRestoresTheCount) {
    setRecording(true);
    const auto detector = makeStartedDetector({2, 5});
    device_.advanceBy(3);
    setRecording(false);
    device_.advanceBy(100);
    EXPECT_THAT(reports_, ElementsAre(Report{0, true}, Report{5, false}));
    EXPECT_EQ(detector->numberOfRemainingRetryAttempts(), 2U);
    captureChanged(true);
    device_.advanceBy(100);
    EXPECT_THAT(reports_, ElementsAre(Report{0, true}, Report{5, false}, Report{103, true},
                                      Report{108, true}, Report{113, true}));
}

TEST_F(ZRMScreenRecording, ThatStopsWithAnEventDropsTheRetry) {
    setRecording(true);
    const auto detector = makeStartedDetector({2, 5});
    device_.advanceBy(3);
    captureChanged(false);
    device_.advanceBy(100);
    EXPECT_THAT(reports_, ElementsAre(Report{0, true}, Report{3, false}));
    EXPECT_EQ(detector->numberOfRemainingRetryAttempts(), 2U);
}

TEST_F(ZRMScreenRecording, ThatStopsAndStartsAgainIsRetriedFromTheNewStart) {
    setRecording(true);
    const auto detector = makeStartedDetector({1, 5});
    device_.advanceBy(3);
    captureChanged(false);
    captureChanged(true);
    device_.advanceBy(100);
    EXPECT_THAT(reports_,
                ElementsAre(Report{0, true}, Report{3, false}, Report{3, true}, Report{8, true}));
}

TEST_F(ZRMScreenRecording, HasOneRetryUnderWayHoweverManyEventsCome) {
    setRecording(true);
    const auto detector = makeStartedDetector({3, 5});
    for (int event = 0; event < 4; ++event) {
        post(ZRMApplicationNotification::ScreenDidConnect);
    }
    EXPECT_THAT(reports_, SizeIs(5));
    EXPECT_EQ(detector->numberOfRemainingRetryAttempts(), 2U);
    device_.advanceBy(5);
    EXPECT_THAT(reports_, SizeIs(6));
    EXPECT_EQ(detector->numberOfRemainingRetryAttempts(), 1U);
}

TEST_F(ZRMScreenRecording, IsReportedByEventsAloneWithoutAttempts) {
    setRecording(true);
    const auto detector = makeStartedDetector({0, 5});
    device_.advanceBy(100);
    post(ZRMApplicationNotification::ScreenCapturedDidChange);
    device_.advanceBy(100);
    EXPECT_THAT(reports_, ElementsAre(Report{0, true}, Report{100, true}));
}

TEST_F(ZRMScreenRecording, IsReportedUnchangedToo) {
    const auto detector = makeStartedDetector({1, 5});
    post(ZRMApplicationNotification::ScreenCapturedDidChange);
    post(ZRMApplicationNotification::ScreenDidConnect);
    EXPECT_THAT(reports_, ElementsAre(Report{0, false}, Report{0, false}, Report{0, false}));
}

TEST_F(ZRMScreenRecording, IsFoundOnAnExternalDisplay) {
    const auto detector = makeStartedDetector({0, 5});
    ZRMScreen main;
    main.hasMirroredScreen = true;
    device_.screens().setScreens({main, ZRMScreen()});
    post(ZRMApplicationNotification::ScreenDidConnect);
    EXPECT_THAT(reports_, ElementsAre(Report{0, false}, Report{0, true}));
}

TEST_F(ZRMScreenRecording, IsNotLookedForOnOtherNotifications) {
    const auto detector = makeStartedDetector({0, 5});
    post(ZRMApplicationNotification::WillEnterForeground);
    post(ZRMApplicationNotification::UserDidTakeScreenshot);
    EXPECT_THAT(reports_, SizeIs(1));
}

TEST_F(ZRMScreenRecording, IsReportedOnTheMainQueueAfterAnEventAndElsewhereAfterADelay) {
    setRecording(true);
    const auto detector = makeStartedDetector({1, 5});
    post(ZRMApplicationNotification::ScreenDidConnect);
    device_.advanceBy(5);
    EXPECT_THAT(onMainQueue_, ElementsAre(false, true, false));
}

TEST_F(ZRMScreenRecording, IsNotReportedOnceTheDetectorIsGone) {
    setRecording(true);
    auto detector = makeStartedDetector({2, 5});
    device_.notifications().post(ZRMApplicationNotification::ScreenDidConnect);
    detector.reset();
    const auto before = device_.tasksRun();
    device_.advanceBy(100);
    EXPECT_THAT(reports_, SizeIs(1));
    // The event's delivery; the timer is gone.
    EXPECT_EQ(device_.tasksRun() - before, 1U);
}

TEST_F(ZRMScreenRecording, IsCheckedWithoutAnybodyToTell) {
    setRecording(true);
    const auto detector = makeDetector({2, 5});
    EXPECT_EQ(detector->numberOfRemainingRetryAttempts(), 2U);
    detector->performScreenRecordingChecks();
    EXPECT_EQ(detector->numberOfRemainingRetryAttempts(), 1U);
    EXPECT_EQ(detector->eventPolicy(), ZRMScreenRecordingEventPolicy(2, 5));
    EXPECT_THAT(reports_, IsEmpty());
}

// A queue whose timers run when the test says so, even after they were cancelled.
class LateQueue final : public ZRMQueue {
  public:
    [[nodiscard]] const std::string& label() const override { return label_; }
    void post(ZRMTask task) override { tasks.push_back(std::move(task)); }
    std::shared_ptr<ZRMTimerHandle> postAfter(double /*delaySeconds*/, ZRMTask task) override {
        tasks.push_back(std::move(task));
        return std::make_shared<Handle>();
    }
    std::shared_ptr<ZRMTimerHandle> postEvery(double /*periodSeconds*/, ZRMTask task) override {
        return postAfter(0, std::move(task));
    }
    [[nodiscard]] bool isCurrent() const override { return false; }

    std::vector<ZRMTask> tasks;

  private:
    struct Handle final : ZRMTimerHandle {
        void cancel() override {}
    };
    std::string label_;
};

TEST_F(ZRMScreenRecording, IsNotReportedByARetryThatHadBegunWhenItWasDropped) {
    setRecording(true);
    const auto queue = std::make_shared<LateQueue>();
    const auto detector = std::make_shared<ZRMScreenRecordingDetector>(
        ZRMScreenRecordingEventPolicy(2, 5), device_.platform()->screens,
        device_.platform()->notifications, queue);
    int reports = 0;
    detector->startDetection([&reports](bool /*recording*/) { ++reports; });
    detector->invalidateRetryChecksTimer();
    ASSERT_THAT(queue->tasks, SizeIs(1));
    queue->tasks[0]();
    EXPECT_EQ(reports, 1);
    // Nor does it take the place of the one that follows.
    detector->scheduleRetryChecksTimerIfNeeded();
    ASSERT_THAT(queue->tasks, SizeIs(2));
    queue->tasks[0]();
    EXPECT_EQ(reports, 1);
    queue->tasks[1]();
    EXPECT_EQ(reports, 2);
}

}  // namespace
