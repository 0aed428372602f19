#include "ZRMPlatform/HostFed/ZRMHostSignals.h"

const std::shared_ptr<ZRMHostSignals>& ZRMHostSignals::shared() {
    static auto* const instance =
        new std::shared_ptr<ZRMHostSignals>(std::make_shared<ZRMHostSignals>());
    return *instance;
}

void ZRMHostSignals::forgetMachine() {
    screens.forget();
    wifi.forget();
    carriers.forget();
    tunnels.forget();
    battery.forget();
    lowPowerMode.forget();
    deviceName.forget();
    localizedModel.forget();
    identifierForVendor.forget();
}
