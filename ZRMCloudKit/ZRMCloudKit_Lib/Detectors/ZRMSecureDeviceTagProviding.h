// The tag that the server gave the device.
#pragma once

#include <memory>
#include <string>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitSettings.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Envelope/ZRMEnvironmentDataImpl.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/ServerTime/ZRMServerTimeProvider.h"
#include "ZRMPlatform/Ports/Values/ZRMData.h"

// May be used from any thread.
class ZRMSecureDeviceTagProviding {
  public:
    virtual ~ZRMSecureDeviceTagProviding() = default;
    [[nodiscard]] virtual std::string secureDeviceTag() const = 0;
    // Asks the server when the tag is due, else arranges to ask when it will be. Returns at once.
    virtual void refreshIfNeeded() = 0;
};

// What such a provider works with.
struct ZRMSecureDeviceTagParameters {
    std::string url;
    ZRMData rootCertificate;  // PEM
    std::shared_ptr<ZRMCloudKitSettings> storage;
    std::shared_ptr<const ZRMEnvironmentDataImpl> environmentData;
    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider;  // may be absent
};
