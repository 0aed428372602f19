#include "Tests/Simulation/ZRMSimulationSettings.h"

#include <array>

#include "ZRMJWS/ZRMJWS_Tests/Support/ZRMFakeJwsVerification.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Categories/NSFileManager/NSFileManager+ZRMMobileKit.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMSettingsKeys.h"

namespace {

// Mostly off: rare reports beside the host's frequent ones.
constexpr std::array kMostlyOff = {
    kZRMTouchIdChangedEventDisabledKey,  kZRMApplicationInfoEventDisabledKey,
    kZRMiOSFingerprintEventDisabledKey,  kZRMiOSGeoLocationEventDisabledKey,
    kZRMDeviceJailbreakEventDisabledKey, kZRMLogDataEventDisabledKey,
    kZRMConfigEventDisabledKey,          kZRMScreenRecordingEventDisabledKey,
    kZRMiOSCallInfoEventDisabledKey,     kZRMVpnEventDisabledKey,
    kZRMScreenshotEventDisabledKey};
constexpr std::array kMostlyOn = {kZRMUserLoginEventDisabledKey, kZRMUserLogoutEventDisabledKey,
                                  kZRMSessionIdEventDisabledKey, kZRMUiNavigationEventDisabledKey};

}  // namespace

std::string zrm_simulationSettingsPath(ZRMSimulatedDevice& device) {
    return zrm_mobileKitSettingsFilePath(*device.platform()->directories);
}

void zrm_putSimulationSettings(ZRMSimulatedDevice& device, ZRMSimulationRandom& random) {
    ZRMDictionary config;
    for (const auto* key : kMostlyOff) {
        config[key] = random.oneIn(3) ? "false" : "true";
    }
    for (const auto* key : kMostlyOn) {
        config[key] = random.oneIn(10) ? "true" : "false";
    }
    const auto payload = zrm_compactJsonText(ZRMDictionary{{"config", config}}).value();
    auto text = zrm_jwsTextWithPayload(random.oneIn(12) ? "{}" : payload);
    if (random.oneIn(12)) {
        text.resize(random.below(text.size()));
    }
    device.disk().put(zrm_simulationSettingsPath(device), text);
}
