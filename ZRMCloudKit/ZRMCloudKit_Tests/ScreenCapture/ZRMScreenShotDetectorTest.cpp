#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/ScreenCapture/ZRMScreenShotDetector.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

class ZRMScreenShot : public testing::Test {
  protected:
    std::shared_ptr<ZRMScreenShotDetector> makeStartedDetector() {
        auto detector = std::make_shared<ZRMScreenShotDetector>(device_.platform()->notifications);
        detector->startDetection([this] {
            EXPECT_TRUE(device_.platform()->executor->mainQueue()->isCurrent());
            ++reports_;
        });
        return detector;
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    int reports_ = 0;
};

TEST_F(ZRMScreenShot, IsReportedOnceEachTime) {
    const auto detector = makeStartedDetector();
    device_.runUntilIdle();
    EXPECT_EQ(reports_, 0);
    device_.notifications().post(ZRMApplicationNotification::UserDidTakeScreenshot);
    device_.runUntilIdle();
    EXPECT_EQ(reports_, 1);
    device_.notifications().post(ZRMApplicationNotification::UserDidTakeScreenshot);
    device_.notifications().post(ZRMApplicationNotification::UserDidTakeScreenshot);
    device_.runUntilIdle();
    EXPECT_EQ(reports_, 3);
}

TEST_F(ZRMScreenShot, IsNotToldByOtherNotifications) {
    const auto detector = makeStartedDetector();
    for (const auto other : {ZRMApplicationNotification::ScreenDidConnect,
                             ZRMApplicationNotification::ScreenCapturedDidChange,
                             ZRMApplicationNotification::WillEnterForeground}) {
        device_.notifications().post(other);
    }
    device_.runUntilIdle();
    EXPECT_EQ(reports_, 0);
}

TEST_F(ZRMScreenShot, IsReportedToNobodyBeforeTheStartAndAfterTheRelease) {
    std::make_shared<ZRMScreenShotDetector>(device_.platform()->notifications)->sendInfo();
    auto detector = makeStartedDetector();
    device_.notifications().post(ZRMApplicationNotification::UserDidTakeScreenshot);
    detector.reset();
    device_.runUntilIdle();
    EXPECT_EQ(reports_, 0);
}

}  // namespace
