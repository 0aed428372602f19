// The process's one event core.
#pragma once

#include <memory>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKit.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitConfiguration.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/ServerTime/ZRMServerTimeProvider.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

// May be used from any thread. Keeps the core as long as the platform it runs on.
class ZRMCloudKitProvider {
  public:
    static std::shared_ptr<ZRMCloudKitProvider> sharedInstance();

    explicit ZRMCloudKitProvider(std::shared_ptr<const ZRMPlatform> platform);
    virtual ~ZRMCloudKitProvider() = default;

    // Makes the core on the first call; later calls return that one, whatever they are given. The
    // server time provider may be absent.
    virtual std::shared_ptr<ZRMCloudKit> cloudKitWithConfiguration(
        const ZRMCloudKitConfiguration& configuration,
        std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider);

  private:
    std::shared_ptr<const ZRMPlatform> platform_;
    ZRMMutex mutex_;
    std::shared_ptr<ZRMCloudKit> cloudKit_ ZRM_GUARDED_BY(mutex_);
};
