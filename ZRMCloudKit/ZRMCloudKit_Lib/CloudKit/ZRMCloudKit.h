// The event core: the one object through which events are raised.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Policies/ZRMCallInfoEventPolicy.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Policies/ZRMScreenRecordingEventPolicy.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"

// May be used from any thread. Before start() the send operations send nothing. An event that was
// sent is queued on the device; whether and when it arrives is not reported back. Unless said
// otherwise an operation returns at once and its work runs on a queue of the core's own.
class ZRMCloudKit {
  public:
    // Absent on success.
    using CompletionHandler = std::function<void(std::optional<ZRMError>)>;

    virtual ~ZRMCloudKit() = default;

    // Once. May block on the disk and on the keychain.
    virtual void start() = 0;
    [[nodiscard]] virtual bool isStarted() const = 0;

    // The tag of the device that events carry; empty before start().
    [[nodiscard]] virtual std::string deviceTag() const = 0;
    // The tag the server gave the device; empty when there is none.
    [[nodiscard]] virtual std::string secureDeviceTag() const = 0;

    // How many events are queued and not yet answered by the server, those of earlier runs
    // included. Work on the core's queue counts as one event until it is done.
    [[nodiscard]] virtual std::size_t pendingEventCount() const = 0;
    // How many of them are not in the store yet and would be lost if the process ended now.
    [[nodiscard]] virtual std::size_t unstoredEventCount() const = 0;

    // These four build and queue their event before they return.
    virtual void sendUserLogin(const std::string& userName, const std::string& result,
                               const std::string& userId) = 0;
    virtual void sendUserLogout() = 0;
    virtual void sendUINavigationPoint(const std::string& navigationPoint) = 0;
    virtual void sendSessionId(const std::string& identifier) = 0;

    // Detects the location for at most `maxDetectionDuration` seconds; `accuracy` is in metres. The
    // event is sent even when no location was found; the handler then receives the reason. The
    // handler is called exactly once, on the core's queue.
    virtual void sendDeviceCoordinatesWithAccuracy(double accuracy, double maxDetectionDuration,
                                                   CompletionHandler completionHandler) = 0;

    // The digest of the application's bundle, at most once an interval.
    virtual void sendApplicationMd5() = 0;
    virtual void sendFingerprint() = 0;
    virtual void sendDeviceJailbreak() = 0;
    // Only when the biometric enrolment is another than the one last reported.
    virtual void sendTouchIdChanged() = 0;
    virtual void sendApplicationSignature() = 0;
    // Lines of the log, oldest first.
    virtual void sendLogEvent(const std::vector<std::string>& logs) = 0;
    // The settings in force.
    virtual void sendConfigEvent() = 0;

    // Each of these begins to observe; it reports what it finds now (a screenshot cannot be found
    // afterwards) and then every change. A repeated call observes anew.
    virtual void sendScreenRecordingEventWithPolicy(
        const ZRMScreenRecordingEventPolicy& policy) = 0;
    virtual void sendCallInfoEventWithPolicy(const ZRMCallInfoEventPolicy& policy) = 0;
    virtual void sendVpnEvent() = 0;
    virtual void sendScreenshotEvent() = 0;
};
