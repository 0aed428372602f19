// Whether somebody else sees the screen.
#pragma once

#include "ZRMPlatform/Ports/ZRMScreens.h"

class ZRMScreenRecordingChecker {
  public:
    // Whether any screen is recorded, mirrored or sent elsewhere at this moment. Where the system
    // cannot say whether a screen is captured, only its mirroring counts. From any thread.
    static bool isRecording(const ZRMScreens& screens);
};
