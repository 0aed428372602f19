// The device's fingerprint.
#pragma once

#include <memory>
#include <optional>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprint.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMTableEvent.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Location/ZRMWifiNodeDescriptor.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Network/ZRMIpAddress.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

// Looks at the device on each call of parameters(), which may block on the disk. Never fails: what
// cannot be read is empty, 0 or false.
class ZRMFingerprintEvent final : public ZRMBaseEvent, public ZRMCloudKitEvent {
  public:
    static ZRMEventTable<ZRMFingerprint> table();

    ZRMFingerprintEvent(std::shared_ptr<const ZRMPlatform> platform,
                        std::shared_ptr<const ZRMMainBundle> bundle,
                        std::optional<ZRMWifiNodeDescriptor> wifiNode,
                        std::optional<ZRMIpAddress> ipAddressV4,
                        std::optional<ZRMIpAddress> ipAddressV6,
                        std::shared_ptr<const ZRMCommonParametersProvider> provider);

    [[nodiscard]] const std::shared_ptr<const ZRMMainBundle>& bundle() const { return bundle_; }
    [[nodiscard]] const std::optional<ZRMWifiNodeDescriptor>& wifiNode() const { return wifiNode_; }
    [[nodiscard]] const std::optional<ZRMIpAddress>& ipAddressV4() const { return ipAddressV4_; }
    [[nodiscard]] const std::optional<ZRMIpAddress>& ipAddressV6() const { return ipAddressV6_; }

    [[nodiscard]] std::uint64_t structVersion() const override;
    [[nodiscard]] ZRMEventPermissions permissions() const override;
    [[nodiscard]] ZRMDictionary parameters() const override;
    // The body alone.
    [[nodiscard]] ZRMDictionary fingerprintParameters() const;

  private:
    void readApplication(ZRMFingerprint& print) const;
    void readTime(ZRMFingerprint& print) const;
    void readDevice(ZRMFingerprint& print) const;
    void readMachine(ZRMFingerprint& print) const;
    void readNetwork(ZRMFingerprint& print) const;

    std::shared_ptr<const ZRMPlatform> platform_;
    std::shared_ptr<const ZRMMainBundle> bundle_;
    std::optional<ZRMWifiNodeDescriptor> wifiNode_;
    std::optional<ZRMIpAddress> ipAddressV4_;
    std::optional<ZRMIpAddress> ipAddressV6_;
};
