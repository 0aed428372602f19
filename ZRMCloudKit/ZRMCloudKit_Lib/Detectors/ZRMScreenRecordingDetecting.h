// Watches whether the screen is recorded, mirrored or shared.
#pragma once

#include <functional>

class ZRMScreenRecordingDetecting {
  public:
    virtual ~ZRMScreenRecordingDetecting() = default;
    // Once. Calls back with the state found now, at once, and again after every check, on the
    // thread that checked.
    virtual void startDetection(std::function<void(bool recording)> completionHandler) = 0;
};
