#include "ZRMPlatform/HostFed/ZRMHostScreens.h"

#include <utility>

void ZRMHostScreens::setCaptured(bool isCaptured) {
    set(&ZRMHostScreens::captured_, isCaptured);
}

void ZRMHostScreens::setMirrored(bool hasMirroredScreen) {
    set(&ZRMHostScreens::mirrored_, hasMirroredScreen);
}

void ZRMHostScreens::set(std::optional<bool> ZRMHostScreens::*word, bool value) {
    {
        const ZRMLockGuard lock(mutex_);
        if (std::exchange(this->*word, value) == value) {
            return;
        }
    }
    notifications_.post(ZRMApplicationNotification::ScreenCapturedDidChange);
}

bool ZRMHostScreens::connect(const ZRMScreen& external) {
    {
        const ZRMLockGuard lock(mutex_);
        if (external_.size() >= kMostExternalScreens) {
            return false;
        }
        external_.push_back(external);
    }
    notifications_.post(ZRMApplicationNotification::ScreenDidConnect);
    return true;
}

// There is no notification of a screen that goes; that nothing is shown on it any more is a change
// of what is captured.
void ZRMHostScreens::disconnect() {
    {
        const ZRMLockGuard lock(mutex_);
        if (std::exchange(external_, {}).empty()) {
            return;
        }
    }
    notifications_.post(ZRMApplicationNotification::ScreenCapturedDidChange);
}

void ZRMHostScreens::forget() {
    {
        const ZRMLockGuard lock(mutex_);
        if (!captured_ && !mirrored_ && external_.empty()) {
            return;
        }
        captured_.reset();
        mirrored_.reset();
        external_.clear();
    }
    notifications_.post(ZRMApplicationNotification::ScreenCapturedDidChange);
}

std::vector<ZRMScreen> ZRMHostScreens::joinedTo(std::vector<ZRMScreen> screens) const {
    const ZRMLockGuard lock(mutex_);
    if (screens.empty() && (captured_ || mirrored_)) {
        screens.emplace_back();
    }
    if (captured_) {
        screens.front().isCaptured = captured_;
    }
    if (mirrored_) {
        screens.front().hasMirroredScreen = *mirrored_;
    }
    screens.insert(screens.end(), external_.begin(), external_.end());
    return screens;
}
