// Learns of the screenshots that the user takes.
#pragma once

#include <functional>

class ZRMScreenshotDetecting {
  public:
    virtual ~ZRMScreenshotDetecting() = default;
    // Once. Calls back once for each screenshot from now on, on the thread that learnt of it.
    virtual void startDetection(std::function<void()> completionHandler) = 0;
};
