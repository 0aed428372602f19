#include "ZRMMobileKit/ZRMDeviceSignals.h"

#include "ZRMMobileKit/ZRMMobileKit_Lib/Signals/ZRMSignalChecks.h"
#include "ZRMPlatform/HostFed/ZRMHostSignals.h"

namespace {

ZRMHostSignals& signals() {
    return *ZRMHostSignals::shared();
}

bool tellText(ZRMHostWord<std::string>& word, const std::string& text) {
    if (!zrm_isSignalText(text)) {
        return false;
    }
    word.tell(text);
    return true;
}

ZRMBiometricEvaluation unavailable(ZRMLocalAuthenticationErrorCode code) {
    return {false, std::nullopt, ZRMError(kZRMLocalAuthenticationErrorDomain, code)};
}

// Absent for a number that names none.
std::optional<ZRMBiometricEvaluation> evaluationOf(ZRMDeviceBiometry biometry) {
    switch (biometry) {
        case ZRMDeviceBiometry::NotAvailable:
            return unavailable(ZRMLocalAuthenticationErrorBiometryNotAvailable);
        case ZRMDeviceBiometry::NotEnrolled:
            return unavailable(ZRMLocalAuthenticationErrorBiometryNotEnrolled);
        case ZRMDeviceBiometry::LockedOut:
            return unavailable(ZRMLocalAuthenticationErrorBiometryLockout);
        case ZRMDeviceBiometry::Enrolled:
            return ZRMBiometricEvaluation{true, std::nullopt, std::nullopt};
    }
    return std::nullopt;
}

}  // namespace

bool ZRMDeviceSignals::updateCall(const ZRMCall& call) {
    return zrm_isSignalCall(call) && signals().calls.update(call);
}

void ZRMDeviceSignals::applicationWillEnterForeground() {
    signals().notifications.post(ZRMApplicationNotification::WillEnterForeground);
}

void ZRMDeviceSignals::userDidTakeScreenshot() {
    signals().notifications.post(ZRMApplicationNotification::UserDidTakeScreenshot);
}

void ZRMDeviceSignals::setScreenCaptured(bool isCaptured) {
    signals().screens.setCaptured(isCaptured);
}

void ZRMDeviceSignals::setScreenMirrored(bool isMirrored) {
    signals().screens.setMirrored(isMirrored);
}

bool ZRMDeviceSignals::connectScreen(const ZRMScreen& screen) {
    return zrm_isSignalScreen(screen) && signals().screens.connect(screen);
}

void ZRMDeviceSignals::disconnectScreens() {
    signals().screens.disconnect();
}

void ZRMDeviceSignals::setLocationServicesEnabled(bool areEnabled) {
    signals().location.setServicesEnabled(areEnabled);
}

bool ZRMDeviceSignals::setLocationAuthorization(ZRMDeviceLocationAuthorization authorization) {
    const int status = static_cast<int>(authorization);
    if (status < ZRMLocationAuthorizationNotDetermined ||
        status > ZRMLocationAuthorizationWhenInUse) {
        return false;
    }
    signals().location.setStatus(status);
    return true;
}

bool ZRMDeviceSignals::isLocationWanted() {
    return signals().location.isWanted();
}

bool ZRMDeviceSignals::updateLocation(const ZRMLocation& location) {
    if (!zrm_isSignalLocation(location)) {
        return false;
    }
    signals().location.deliver({location});
    return true;
}

void ZRMDeviceSignals::locationFailed(std::int64_t code) {
    signals().location.fail(ZRMError(kZRMLocationErrorDomain, code));
}

bool ZRMDeviceSignals::setBiometry(ZRMDeviceBiometry biometry,
                                   const std::optional<ZRMData>& state) {
    auto evaluation = evaluationOf(biometry);
    if (!evaluation ||
        (state && (!evaluation->canEvaluate || state->size() > kZRMMaxSignalLength))) {
        return false;
    }
    evaluation->domainState = state;
    signals().biometrics.tell(*std::move(evaluation));
    return true;
}

bool ZRMDeviceSignals::setWifi(const std::optional<ZRMWifiNetwork>& network) {
    if (network && !zrm_isSignalNetwork(*network)) {
        return false;
    }
    signals().wifi.tell(network);
    return true;
}

bool ZRMDeviceSignals::setCarriers(const std::vector<ZRMCarrier>& carriers) {
    if (!zrm_areSignalCarriers(carriers)) {
        return false;
    }
    signals().carriers.tell(carriers);
    return true;
}

bool ZRMDeviceSignals::setTunnels(const std::vector<std::string>& interfaceNames) {
    if (!zrm_areSignalTunnels(interfaceNames)) {
        return false;
    }
    signals().tunnels.tell(interfaceNames);
    return true;
}

bool ZRMDeviceSignals::setBattery(float level, ZRMDeviceBattery state) {
    const int number = static_cast<int>(state);
    const bool isLevel = level == -1.0F || (level >= 0.0F && level <= 1.0F);
    if (!isLevel || number < 0 || number > static_cast<int>(ZRMDeviceBattery::Full)) {
        return false;
    }
    signals().battery.tell({level, static_cast<ZRMBatteryState>(number)});
    return true;
}

void ZRMDeviceSignals::setLowPowerMode(bool isEnabled) {
    signals().lowPowerMode.tell(isEnabled);
}

bool ZRMDeviceSignals::setDeviceName(const std::string& name) {
    return tellText(signals().deviceName, name);
}

bool ZRMDeviceSignals::setLocalizedModel(const std::string& model) {
    return tellText(signals().localizedModel, model);
}

bool ZRMDeviceSignals::setIdentifierForVendor(const std::string& identifier) {
    return tellText(signals().identifierForVendor, identifier);
}

void ZRMDeviceSignals::forgetMachine() {
    signals().forgetMachine();
}
