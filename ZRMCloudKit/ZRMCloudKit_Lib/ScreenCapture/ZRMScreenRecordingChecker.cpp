#include "ZRMCloudKit/ZRMCloudKit_Lib/ScreenCapture/ZRMScreenRecordingChecker.h"

#include <algorithm>

bool ZRMScreenRecordingChecker::isRecording(const ZRMScreens& screens) {
    return std::ranges::any_of(screens.screens(), [](const ZRMScreen& screen) {
        return screen.isCaptured.value_or(false) || screen.hasMirroredScreen;
    });
}
