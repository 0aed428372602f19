#include "Tools/zrm-host/ZRMHostSignalCommands.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <iterator>
#include <thread>
#include <utility>

#include "Tools/zrm-host/ZRMHostArguments.h"
#include "ZRMMobileKit/ZRMDeviceSignals.h"

namespace {

using Words = std::vector<std::string>;

// A position that a command asked for just before is not looked for at once.
constexpr std::chrono::seconds kLookingLimit{2};
constexpr std::chrono::milliseconds kLookingPause{5};

// The place of the text in the list, which is the enumerator's number too, or that number itself.
template <std::size_t Count>
std::optional<int> numberOf(const std::array<std::string_view, Count>& names,
                            std::string_view text) {
    for (std::size_t number = 0; number < Count; ++number) {
        if (text == names.at(number) || text == std::to_string(number)) {
            return static_cast<int>(number);
        }
    }
    return std::nullopt;
}

bool setSwitch(const std::string& text, void (*set)(bool)) {
    const auto isOn = zrm_switchFromText(text);
    if (isOn) {
        set(*isOn);
    }
    return isOn.has_value();
}

bool call(const Words& words) {
    ZRMCall call{.uuid = words.front()};
    for (auto state = std::next(words.begin()); state != words.end(); ++state) {
        if (*state == "connected") {
            call.hasConnected = true;
        } else if (*state == "ended") {
            call.hasEnded = true;
        } else if (*state == "hold") {
            call.isOnHold = true;
        } else if (*state == "outgoing") {
            call.isOutgoing = true;
        } else {
            return false;
        }
    }
    return ZRMDeviceSignals::updateCall(call);
}

bool foreground(const Words&) {
    ZRMDeviceSignals::applicationWillEnterForeground();
    return true;
}

bool screenshot(const Words&) {
    ZRMDeviceSignals::userDidTakeScreenshot();
    return true;
}

bool screenCaptured(const Words& words) {
    return setSwitch(words[0], &ZRMDeviceSignals::setScreenCaptured);
}

bool screenMirrored(const Words& words) {
    return setSwitch(words[0], &ZRMDeviceSignals::setScreenMirrored);
}

bool screenConnected(const Words& words) {
    if (!words.empty() && words[0] != "mirror" && words[0] != "extend") {
        return false;
    }
    return ZRMDeviceSignals::connectScreen(
        {.hasMirroredScreen = words.empty() || words[0] == "mirror",
         .width = 1920,
         .height = 1080});
}

bool screensDisconnected(const Words&) {
    ZRMDeviceSignals::disconnectScreens();
    return true;
}

bool locationServices(const Words& words) {
    return setSwitch(words[0], &ZRMDeviceSignals::setLocationServicesEnabled);
}

bool locationAuthorization(const Words& words) {
    constexpr std::array<std::string_view, 5> names{"not-determined", "restricted", "denied",
                                                    "always", "when-in-use"};
    const auto number = numberOf(names, words[0]);
    return number && ZRMDeviceSignals::setLocationAuthorization(
                         static_cast<ZRMDeviceLocationAuthorization>(*number));
}

void waitUntilLocationIsWanted() {
    const auto end = std::chrono::steady_clock::now() + kLookingLimit;
    while (!ZRMDeviceSignals::isLocationWanted() && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(kLookingPause);
    }
}

bool location(const Words& words) {
    const auto latitude = zrm_numberFromText(words[0]);
    const auto longitude = zrm_numberFromText(words[1]);
    const auto accuracy = zrm_numberFromText(words[2]);
    if (!latitude || !longitude || !accuracy) {
        return false;
    }
    waitUntilLocationIsWanted();
    return ZRMDeviceSignals::updateLocation({*latitude, *longitude, *accuracy});
}

bool locationError(const Words& words) {
    const auto code = zrm_numberFromText(words[0]);
    if (!code || std::trunc(*code) != *code || std::abs(*code) > 1e9) {
        return false;
    }
    waitUntilLocationIsWanted();
    ZRMDeviceSignals::locationFailed(static_cast<std::int64_t>(*code));
    return true;
}

bool biometry(const Words& words) {
    constexpr std::array<std::string_view, 4> names{"unavailable", "not-enrolled", "locked-out",
                                                    "enrolled"};
    const auto number = numberOf(names, words[0]);
    const auto state =
        words.size() > 1 ? std::optional(ZRMData(words[1].begin(), words[1].end())) : std::nullopt;
    return number && ZRMDeviceSignals::setBiometry(static_cast<ZRMDeviceBiometry>(*number), state);
}

bool vpn(const Words& words) {
    if (words[0] == "off") {
        return ZRMDeviceSignals::setTunnels({});
    }
    return ZRMDeviceSignals::setTunnels({words[0] == "on" ? "utun0" : words[0]});
}

bool wifi(const Words& words) {
    if (words == Words{"off"}) {
        return ZRMDeviceSignals::setWifi(std::nullopt);
    }
    ZRMWifiNetwork network{.ssid = words[0], .bssid = std::nullopt};
    if (words.size() > 1) {
        network.bssid = words[1];
    }
    return ZRMDeviceSignals::setWifi(network);
}

bool carrier(const Words& words) {
    constexpr std::size_t kPerCarrier = 5;
    if (words == Words{"off"}) {
        return ZRMDeviceSignals::setCarriers({});
    }
    std::vector<ZRMCarrier> carriers;
    for (std::size_t first = 0; first < words.size(); first += kPerCarrier) {
        const auto word = [&](std::size_t offset) {
            return first + offset < words.size() ? std::optional(words[first + offset])
                                                 : std::nullopt;
        };
        const auto allowsVoip = zrm_switchFromText(word(4).value_or("off"));
        if (!allowsVoip) {
            return false;
        }
        carriers.push_back({*allowsVoip, word(1), word(2), word(3), word(0)});
    }
    return ZRMDeviceSignals::setCarriers(carriers);
}

bool battery(const Words& words) {
    constexpr std::array<std::string_view, 4> names{"unknown", "unplugged", "charging", "full"};
    const auto level = words[0] == "unknown" ? -1 : zrm_numberFromText(words[0]);
    const auto number = numberOf(names, words[1]);
    return level && number &&
           ZRMDeviceSignals::setBattery(static_cast<float>(*level),
                                        static_cast<ZRMDeviceBattery>(*number));
}

bool lowPower(const Words& words) {
    return setSwitch(words[0], &ZRMDeviceSignals::setLowPowerMode);
}

bool deviceName(const Words& words) {
    return ZRMDeviceSignals::setDeviceName(words[0]);
}

bool localizedModel(const Words& words) {
    return ZRMDeviceSignals::setLocalizedModel(words[0]);
}

bool vendorIdentifier(const Words& words) {
    return ZRMDeviceSignals::setIdentifierForVendor(words[0]);
}

bool forget(const Words&) {
    ZRMDeviceSignals::forgetMachine();
    return true;
}

constexpr std::array kSignals{
    ZRMHostSignal{"call", 1, 5, "UUID [connected] [ended] [hold] [outgoing]",
                  "a new call or a new state of it: the words that hold now", call},
    ZRMHostSignal{"foreground", 0, 0, "", "the application comes to the foreground", foreground},
    ZRMHostSignal{"screenshot", 0, 0, "", "the user takes a screenshot", screenshot},
    ZRMHostSignal{"screen-captured", 1, 1, "on|off", "the main screen is captured", screenCaptured},
    ZRMHostSignal{"screen-mirrored", 1, 1, "on|off", "the main screen is mirrored", screenMirrored},
    ZRMHostSignal{"screen-connected", 0, 1, "[mirror|extend]",
                  "a screen of 1920 by 1080 is connected, by default one that mirrors the main one",
                  screenConnected},
    ZRMHostSignal{"screens-disconnected", 0, 0, "", "all of these are gone", screensDisconnected},
    ZRMHostSignal{"location-services", 1, 1, "on|off", "location services are on",
                  locationServices},
    ZRMHostSignal{"location-authorization", 1, 1,
                  "not-determined|restricted|denied|always|when-in-use", "or 0 to 4",
                  locationAuthorization},
    ZRMHostSignal{"location", 3, 3, "LATITUDE LONGITUDE ACCURACY",
                  "a fix, in degrees and metres; given once the library looks for one, and after "
                  "2 seconds in any case",
                  location},
    ZRMHostSignal{"location-error", 1, 1, "CODE", "a failure, given in the same way",
                  locationError},
    ZRMHostSignal{"biometry", 1, 2, "unavailable|not-enrolled|locked-out|enrolled [STATE]",
                  "or 0 to 3; STATE is a text that changes with the enrolment", biometry},
    ZRMHostSignal{"vpn", 1, 1, "on|off|NAME", "a tunnel beside those of the machine: on is utun0",
                  vpn},
    ZRMHostSignal{"wifi", 1, 2, "off | SSID [BSSID]", "the wireless network", wifi},
    ZRMHostSignal{"carrier", 1, ZRMHostSignal::kAny, "off | NAME [COUNTRY MCC MNC [on|off]] ...",
                  "the subscriptions, five words each; the last says whether VoIP is allowed",
                  carrier},
    ZRMHostSignal{"battery", 2, 2, "LEVEL|unknown unknown|unplugged|charging|full",
                  "LEVEL is 0 to 1", battery},
    ZRMHostSignal{"low-power", 1, 1, "on|off", "low-power mode is on", lowPower},
    ZRMHostSignal{"device-name", 1, 1, "NAME", "as the user named the device", deviceName},
    ZRMHostSignal{"localized-model", 1, 1, "MODEL", "the kind of device", localizedModel},
    ZRMHostSignal{"vendor-identifier", 1, 1, "UUID", "the maker's identifier of the device",
                  vendorIdentifier},
    ZRMHostSignal{"forget", 0, 0, "",
                  "the machine answers again for screens, networks, power and names", forget},
};

std::string usageOf(const ZRMHostSignal& signal) {
    auto usage = "signal " + std::string(signal.name);
    if (!signal.arguments.empty()) {
        usage += " " + std::string(signal.arguments);
    }
    return usage;
}

}  // namespace

std::optional<std::string> zrm_feedHostSignal(const std::vector<std::string>& words) {
    const auto* const signal = std::ranges::find(kSignals, words.front(), &ZRMHostSignal::name);
    if (signal == kSignals.end()) {
        return "there is no such signal";
    }
    const Words arguments(std::next(words.begin()), words.end());
    if (arguments.size() < signal->fewestArguments || arguments.size() > signal->mostArguments) {
        return "usage: " + usageOf(*signal);
    }
    if (!signal->feed(arguments)) {
        return "a value is refused; usage: " + usageOf(*signal);
    }
    return std::nullopt;
}

std::string zrm_hostSignalsHelp() {
    std::string help;
    for (const auto& signal : kSignals) {
        help += "  " + usageOf(signal) + "\n      " + std::string(signal.meaning) + "\n";
    }
    return help;
}
