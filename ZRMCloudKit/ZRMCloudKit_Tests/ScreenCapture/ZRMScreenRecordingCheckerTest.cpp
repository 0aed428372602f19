#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/ScreenCapture/ZRMScreenRecordingChecker.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

ZRMScreen screen(std::optional<bool> isCaptured, bool hasMirroredScreen) {
    ZRMScreen made;
    made.isCaptured = isCaptured;
    made.hasMirroredScreen = hasMirroredScreen;
    return made;
}

bool isRecording(std::vector<ZRMScreen> list) {
    ZRMSimulatedScreens screens;
    screens.setScreens(std::move(list));
    return ZRMScreenRecordingChecker::isRecording(screens);
}

TEST(ZRMScreenRecordingCheck, FindsACapturedScreen) {
    EXPECT_TRUE(isRecording({screen(true, false)}));
    EXPECT_TRUE(isRecording({screen(true, true)}));
    EXPECT_FALSE(isRecording({screen(false, false)}));
}

TEST(ZRMScreenRecordingCheck, FindsAMirroredScreenThatIsNotSaidToBeCaptured) {
    EXPECT_TRUE(isRecording({screen(false, true)}));
}

TEST(ZRMScreenRecordingCheck, GoesByTheMirroringAloneWhereTheSystemCannotSay) {
    EXPECT_TRUE(isRecording({screen(std::nullopt, true)}));
    EXPECT_FALSE(isRecording({screen(std::nullopt, false)}));
}

TEST(ZRMScreenRecordingCheck, LooksAtEveryScreen) {
    EXPECT_TRUE(
        isRecording({screen(false, false), screen(std::nullopt, false), screen(true, false)}));
    EXPECT_TRUE(isRecording({screen(false, false), screen(std::nullopt, true)}));
    EXPECT_FALSE(isRecording({screen(false, false), screen(std::nullopt, false)}));
}

TEST(ZRMScreenRecordingCheck, FindsNothingWithoutAScreen) {
    EXPECT_FALSE(isRecording({}));
}

}  // namespace
