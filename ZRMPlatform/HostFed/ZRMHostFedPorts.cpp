#include "ZRMPlatform/HostFed/ZRMHostFedPorts.h"

#include <utility>

#include "ZRMPlatform/HostFed/ZRMHostFedCalls.h"
#include "ZRMPlatform/HostFed/ZRMHostFedDevice.h"
#include "ZRMPlatform/HostFed/ZRMHostFedLocalAuthentication.h"
#include "ZRMPlatform/HostFed/ZRMHostFedLocation.h"
#include "ZRMPlatform/HostFed/ZRMHostFedNetwork.h"
#include "ZRMPlatform/HostFed/ZRMHostFedNotifications.h"
#include "ZRMPlatform/HostFed/ZRMHostFedPower.h"
#include "ZRMPlatform/HostFed/ZRMHostFedScreens.h"

namespace {

template <class HostFed, class Port>
void wrap(std::shared_ptr<Port>& port, const std::shared_ptr<ZRMHostSignals>& signals) {
    port = std::make_shared<HostFed>(std::move(port), signals);
}

}  // namespace

void zrm_joinHostFedPorts(ZRMPlatform& platform, const std::shared_ptr<ZRMHostSignals>& signals) {
    const auto mainQueue = platform.executor->mainQueue();
    platform.calls = std::make_shared<ZRMHostFedCalls>(signals);
    platform.notifications = std::make_shared<ZRMHostFedNotifications>(signals, mainQueue);
    platform.locationAuthorization = std::make_shared<ZRMHostFedLocationAuthorization>(signals);
    platform.locationServices = std::make_shared<ZRMHostFedLocationServices>(signals, mainQueue);
    platform.localAuthentication = std::make_shared<ZRMHostFedLocalAuthentication>(signals);
    wrap<ZRMHostFedDevice>(platform.device, signals);
    wrap<ZRMHostFedScreens>(platform.screens, signals);
    wrap<ZRMHostFedWifi>(platform.wifi, signals);
    wrap<ZRMHostFedCarriers>(platform.carriers, signals);
    wrap<ZRMHostFedNetworkInterfaces>(platform.networkInterfaces, signals);
    wrap<ZRMHostFedPower>(platform.power, signals);
}
