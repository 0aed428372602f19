// What a host knows of the device and tells the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "ZRMPlatform/Ports/Values/ZRMCall.h"
#include "ZRMPlatform/Ports/Values/ZRMCarrier.h"
#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/Values/ZRMExport.h"
#include "ZRMPlatform/Ports/Values/ZRMLocation.h"
#include "ZRMPlatform/Ports/Values/ZRMScreen.h"
#include "ZRMPlatform/Ports/Values/ZRMWifiNetwork.h"

// Longest text and longest biometric state, in bytes.
inline constexpr std::size_t kZRMMaxSignalLength = 1024;
// Most elements of a list.
inline constexpr std::size_t kZRMMaxSignalCarriers = 16;
inline constexpr std::size_t kZRMMaxSignalTunnels = 64;

// Whether the user lets the application know where the device is.
enum class ZRMDeviceLocationAuthorization : int {
    NotDetermined = 0,
    Restricted = 1,
    Denied = 2,
    Always = 3,
    WhenInUse = 4,
};

enum class ZRMDeviceBattery : int { Unknown = 0, Unplugged = 1, Charging = 2, Full = 3 };

// Whether a finger or a face could be recognised now.
enum class ZRMDeviceBiometry : int {
    NotAvailable = 0,  // there is no sensor
    NotEnrolled = 1,
    LockedOut = 2,
    Enrolled = 3,
};

// The host's word on the device the process runs on. The device tells much by itself; where the
// system has no such service (calls, screenshots, a position on Linux), the library knows what the
// host tells and nothing else.
//
// Threads: every operation may be called from any thread, at any rate, before a service is made or
// activated and after. It never waits: what follows from it happens on the library's queues.
// Updates of one call that come from one thread are kept in their order.
//
// Ownership: everything is copied. The last word holds until the next one, or until the process
// ends.
//
// An operation that yields false has refused its argument, and nothing has changed. Texts must be
// UTF-8 without NUL and at most kZRMMaxSignalLength bytes long, numbers finite and in the range
// that is given, enumerators those that are named.
class ZRM_EXPORT ZRMDeviceSignals {
  public:
    ZRMDeviceSignals() = delete;

    // A new call, or a new state of the one with the same UUID, which is not empty. One that has
    // ended is forgotten; a call that would be the 1001st under way is refused.
    [[nodiscard]] static bool updateCall(const ZRMCall& call);

    // The application comes back to the user.
    static void applicationWillEnterForeground();
    static void userDidTakeScreenshot();

    // The contents of the main screen are recorded or sent elsewhere; another screen shows them.
    static void setScreenCaptured(bool isCaptured);
    static void setScreenMirrored(bool isMirrored);
    // An external screen, with `hasMirroredScreen` where it shows what the main one does. Sizes are
    // 0 or above, scales above 0; the 17th is refused.
    [[nodiscard]] static bool connectScreen(const ZRMScreen& screen);
    // All external screens that the host has connected.
    static void disconnectScreens();

    // Off and not determined at first.
    static void setLocationServicesEnabled(bool areEnabled);
    [[nodiscard]] static bool setLocationAuthorization(
        ZRMDeviceLocationAuthorization authorization);
    // Whether the library is looking for the position now. A fix that comes at any other time is
    // not kept.
    [[nodiscard]] static bool isLocationWanted();
    // Latitude from -90 to 90 and longitude from -180 to 180 degrees, accuracy 0 metres or above.
    [[nodiscard]] static bool updateLocation(const ZRMLocation& location);
    // The position could not be found just now; the codes are the location service's: 0 unknown,
    // 1 denied.
    static void locationFailed(std::int64_t code);

    // Not available at first. The state goes with Enrolled alone: bytes that change whenever the
    // enrolled fingers or faces do.
    [[nodiscard]] static bool setBiometry(ZRMDeviceBiometry biometry,
                                          const std::optional<ZRMData>& state = std::nullopt);

    // Without a value: attached to none.
    [[nodiscard]] static bool setWifi(const std::optional<ZRMWifiNetwork>& network);
    // One a subscription; at most kZRMMaxSignalCarriers.
    [[nodiscard]] static bool setCarriers(const std::vector<ZRMCarrier>& carriers);
    // Names of network interfaces, such as "utun0", beside those that the system lists; none is
    // empty, at most kZRMMaxSignalTunnels. A name with "tap", "tun", "ppp" or "ipsec" in it counts
    // as a VPN, which is looked at when the application comes to the foreground.
    [[nodiscard]] static bool setTunnels(const std::vector<std::string>& interfaceNames);

    // The level from 0.0 to 1.0, or -1.0 when unknown.
    [[nodiscard]] static bool setBattery(float level, ZRMDeviceBattery state);
    static void setLowPowerMode(bool isEnabled);

    // As the user named the device; its kind, in the user's language; a UUID that is the same for
    // all applications of one maker on this device.
    [[nodiscard]] static bool setDeviceName(const std::string& name);
    [[nodiscard]] static bool setLocalizedModel(const std::string& model);
    [[nodiscard]] static bool setIdentifierForVendor(const std::string& identifier);

    // Takes back the words on screens, networks, power and the device's name: the system is asked
    // again.
    static void forgetMachine();
};
