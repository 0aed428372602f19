#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMFingerprintSource.h"

#include <utility>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMEventProvider.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Network/ZRMIpAddressProvider.h"

ZRMFingerprintSource::ZRMFingerprintSource(std::shared_ptr<const ZRMPlatform> platform)
    : platform_(std::move(platform)) {}

std::shared_ptr<ZRMCloudKitEvent> ZRMFingerprintSource::eventWithProvider(
    const ZRMEventProvider& provider) {
    const ZRMIpAddressProvider addresses(platform_->networkInterfaces);
    return provider.fingerprintEventWithBundle(
        platform_->mainBundle, ZRMWifiNodeDescriptor::currentWiFiNodeDescriptor(*platform_->wifi),
        addresses.currentIpAddressV4(), addresses.currentIpAddressV6());
}
