// Which events are switched off, and how two detectors retry.
#pragma once

#include <array>
#include <cstddef>
#include <optional>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Policies/ZRMCallInfoEventPolicy.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Policies/ZRMScreenRecordingEventPolicy.h"

// The events that have a switch.
enum class ZRMSwitchedEvent : std::size_t {
    TouchIdChanged,
    ApplicationInfo,
    Fingerprint,
    Coordinates,
    DeviceJailbreak,
    ApplicationSignature,
    LogData,
    Config,
    ScreenRecording,
    CallInfo,
    Vpn,
    UserLogin,
    UserLogout,
    SessionId,
    UiNavigation,
    Screenshot,
};

// A value. Every event is on, and there is no policy, at first.
class ZRMEventSettings {
  public:
    static constexpr std::size_t kEventCount =
        static_cast<std::size_t>(ZRMSwitchedEvent::Screenshot) + 1;

    [[nodiscard]] bool isDisabled(ZRMSwitchedEvent event) const {
        return disabled_[static_cast<std::size_t>(event)];
    }
    void setDisabled(ZRMSwitchedEvent event, bool disabled) {
        disabled_[static_cast<std::size_t>(event)] = disabled;
    }

    [[nodiscard]] bool isTouchIdChangedEventDisabled() const {
        return isDisabled(ZRMSwitchedEvent::TouchIdChanged);
    }
    void enableTouchIdChangedEvent() { setDisabled(ZRMSwitchedEvent::TouchIdChanged, false); }
    void disableTouchIdChangedEvent() { setDisabled(ZRMSwitchedEvent::TouchIdChanged, true); }

    [[nodiscard]] bool isApplicationInfoEventDisabled() const {
        return isDisabled(ZRMSwitchedEvent::ApplicationInfo);
    }
    void enableApplicationInfoEvent() { setDisabled(ZRMSwitchedEvent::ApplicationInfo, false); }
    void disableApplicationInfoEvent() { setDisabled(ZRMSwitchedEvent::ApplicationInfo, true); }

    [[nodiscard]] bool isFingerprintEventDisabled() const {
        return isDisabled(ZRMSwitchedEvent::Fingerprint);
    }
    void enableFingerprintEvent() { setDisabled(ZRMSwitchedEvent::Fingerprint, false); }
    void disableFingerprintEvent() { setDisabled(ZRMSwitchedEvent::Fingerprint, true); }

    [[nodiscard]] bool isCoordinatesEventDisabled() const {
        return isDisabled(ZRMSwitchedEvent::Coordinates);
    }
    void enableCoordinatesEvent() { setDisabled(ZRMSwitchedEvent::Coordinates, false); }
    void disableCoordinatesEvent() { setDisabled(ZRMSwitchedEvent::Coordinates, true); }

    [[nodiscard]] bool isDeviceJailbreakEventDisabled() const {
        return isDisabled(ZRMSwitchedEvent::DeviceJailbreak);
    }
    void enableDeviceJailbreakEvent() { setDisabled(ZRMSwitchedEvent::DeviceJailbreak, false); }
    void disableDeviceJailbreakEvent() { setDisabled(ZRMSwitchedEvent::DeviceJailbreak, true); }

    [[nodiscard]] bool isApplicationSignatureEventDisabled() const {
        return isDisabled(ZRMSwitchedEvent::ApplicationSignature);
    }
    void enableApplicationSignatureEvent() {
        setDisabled(ZRMSwitchedEvent::ApplicationSignature, false);
    }
    void disableApplicationSignatureEvent() {
        setDisabled(ZRMSwitchedEvent::ApplicationSignature, true);
    }

    [[nodiscard]] bool isLogDataEventDisabled() const {
        return isDisabled(ZRMSwitchedEvent::LogData);
    }
    void enableLogDataEvent() { setDisabled(ZRMSwitchedEvent::LogData, false); }
    void disableLogDataEvent() { setDisabled(ZRMSwitchedEvent::LogData, true); }

    [[nodiscard]] bool isConfigEventDisabled() const {
        return isDisabled(ZRMSwitchedEvent::Config);
    }
    void enableConfigEvent() { setDisabled(ZRMSwitchedEvent::Config, false); }
    void disableConfigEvent() { setDisabled(ZRMSwitchedEvent::Config, true); }

    [[nodiscard]] bool isScreenRecordingEventDisabled() const {
        return isDisabled(ZRMSwitchedEvent::ScreenRecording);
    }
    void enableScreenRecordingEvent() { setDisabled(ZRMSwitchedEvent::ScreenRecording, false); }
    void disableScreenRecordingEvent() { setDisabled(ZRMSwitchedEvent::ScreenRecording, true); }

    [[nodiscard]] bool isCallInfoEventDisabled() const {
        return isDisabled(ZRMSwitchedEvent::CallInfo);
    }
    void enableCallInfoEvent() { setDisabled(ZRMSwitchedEvent::CallInfo, false); }
    void disableCallInfoEvent() { setDisabled(ZRMSwitchedEvent::CallInfo, true); }

    [[nodiscard]] bool isVpnEventDisabled() const { return isDisabled(ZRMSwitchedEvent::Vpn); }
    void enableVpnEvent() { setDisabled(ZRMSwitchedEvent::Vpn, false); }
    void disableVpnEvent() { setDisabled(ZRMSwitchedEvent::Vpn, true); }

    [[nodiscard]] bool isUserLoginEventDisabled() const {
        return isDisabled(ZRMSwitchedEvent::UserLogin);
    }
    void enableUserLoginEvent() { setDisabled(ZRMSwitchedEvent::UserLogin, false); }
    void disableUserLoginEvent() { setDisabled(ZRMSwitchedEvent::UserLogin, true); }

    [[nodiscard]] bool isUserLogoutEventDisabled() const {
        return isDisabled(ZRMSwitchedEvent::UserLogout);
    }
    void enableUserLogoutEvent() { setDisabled(ZRMSwitchedEvent::UserLogout, false); }
    void disableUserLogoutEvent() { setDisabled(ZRMSwitchedEvent::UserLogout, true); }

    [[nodiscard]] bool isSessionIdEventDisabled() const {
        return isDisabled(ZRMSwitchedEvent::SessionId);
    }
    void enableSessionIdEvent() { setDisabled(ZRMSwitchedEvent::SessionId, false); }
    void disableSessionIdEvent() { setDisabled(ZRMSwitchedEvent::SessionId, true); }

    [[nodiscard]] bool isUiNavigationEventDisabled() const {
        return isDisabled(ZRMSwitchedEvent::UiNavigation);
    }
    void enableUiNavigationEvent() { setDisabled(ZRMSwitchedEvent::UiNavigation, false); }
    void disableUiNavigationEvent() { setDisabled(ZRMSwitchedEvent::UiNavigation, true); }

    [[nodiscard]] bool isScreenshotEventDisabled() const {
        return isDisabled(ZRMSwitchedEvent::Screenshot);
    }
    void enableScreenshotEvent() { setDisabled(ZRMSwitchedEvent::Screenshot, false); }
    void disableScreenshotEvent() { setDisabled(ZRMSwitchedEvent::Screenshot, true); }

    [[nodiscard]] const std::optional<ZRMScreenRecordingEventPolicy>& screenRecordingEventPolicy()
        const {
        return screenRecordingEventPolicy_;
    }
    void setScreenRecordingEventPolicy(std::optional<ZRMScreenRecordingEventPolicy> policy) {
        screenRecordingEventPolicy_ = policy;
    }

    [[nodiscard]] const std::optional<ZRMCallInfoEventPolicy>& callInfoEventPolicy() const {
        return callInfoEventPolicy_;
    }
    void setCallInfoEventPolicy(std::optional<ZRMCallInfoEventPolicy> policy) {
        callInfoEventPolicy_ = policy;
    }

    friend bool operator==(const ZRMEventSettings&, const ZRMEventSettings&) = default;

  private:
    std::array<bool, kEventCount> disabled_{};
    std::optional<ZRMScreenRecordingEventPolicy> screenRecordingEventPolicy_;
    std::optional<ZRMCallInfoEventPolicy> callInfoEventPolicy_;
};
