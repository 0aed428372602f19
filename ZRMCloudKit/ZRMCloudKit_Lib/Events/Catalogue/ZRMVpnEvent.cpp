#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMVpnEvent.h"

#include <array>
#include <utility>

ZRMEventTable<ZRMVpnEvent> ZRMVpnEvent::table() {
    static constexpr std::array kFields{
        zrm_eventField<&ZRMVpnEvent::isVpnConnected>("transportVpn", "a VPN connection is active"),
    };
    return {"VPNEvent", 1, kZRMEventPermissionNone, kFields};
}

ZRMVpnEvent::ZRMVpnEvent(bool vpnConnected,
                         std::shared_ptr<const ZRMCommonParametersProvider> provider)
    : ZRMTableEvent(std::move(provider)), vpnConnected_(vpnConnected) {}
