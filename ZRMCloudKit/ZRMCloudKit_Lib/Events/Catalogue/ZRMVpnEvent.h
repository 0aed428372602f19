// Whether a VPN is connected.
#pragma once

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMTableEvent.h"

class ZRMVpnEvent final : public ZRMTableEvent<ZRMVpnEvent> {
  public:
    static ZRMEventTable<ZRMVpnEvent> table();

    ZRMVpnEvent(bool vpnConnected, std::shared_ptr<const ZRMCommonParametersProvider> provider);

    [[nodiscard]] bool isVpnConnected() const { return vpnConnected_; }

  private:
    bool vpnConnected_;
};
