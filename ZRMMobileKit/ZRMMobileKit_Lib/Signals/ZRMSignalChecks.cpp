#include "ZRMMobileKit/ZRMMobileKit_Lib/Signals/ZRMSignalChecks.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"
#include "ZRMMobileKit/ZRMDeviceSignals.h"

namespace {

bool isText(const std::optional<std::string>& text) {
    return !text || zrm_isSignalText(*text);
}

// False for what is no number.
bool isWithin(double value, double least, double most) {
    return value >= least && value <= most;
}

bool isFiniteAndPositive(double value) {
    return std::isfinite(value) && value > 0;
}

bool isFiniteAndNotNegative(double value) {
    return std::isfinite(value) && value >= 0;
}

}  // namespace

bool zrm_isSignalText(const std::string& text) {
    return text.size() <= kZRMMaxSignalLength && text.find('\0') == std::string::npos &&
           zrm_isValidUtf8(text);
}

bool zrm_isSignalCall(const ZRMCall& call) {
    return call.uuid && !call.uuid->empty() && zrm_isSignalText(*call.uuid);
}

bool zrm_isSignalScreen(const ZRMScreen& screen) {
    return isFiniteAndNotNegative(screen.width) && isFiniteAndNotNegative(screen.height) &&
           isFiniteAndPositive(screen.scale) && isFiniteAndPositive(screen.nativeScale);
}

bool zrm_isSignalLocation(const ZRMLocation& location) {
    return isWithin(location.latitude, -90, 90) && isWithin(location.longitude, -180, 180) &&
           isFiniteAndNotNegative(location.horizontalAccuracy);
}

bool zrm_isSignalNetwork(const ZRMWifiNetwork& network) {
    return isText(network.ssid) && isText(network.bssid);
}

bool zrm_areSignalCarriers(const std::vector<ZRMCarrier>& carriers) {
    return carriers.size() <= kZRMMaxSignalCarriers &&
           std::ranges::all_of(carriers, [](const auto& carrier) {
               return isText(carrier.isoCountryCode) && isText(carrier.mobileCountryCode) &&
                      isText(carrier.mobileNetworkCode) && isText(carrier.name);
           });
}

bool zrm_areSignalTunnels(const std::vector<std::string>& interfaceNames) {
    return interfaceNames.size() <= kZRMMaxSignalTunnels &&
           std::ranges::all_of(interfaceNames, [](const auto& name) {
               return !name.empty() && zrm_isSignalText(name);
           });
}
