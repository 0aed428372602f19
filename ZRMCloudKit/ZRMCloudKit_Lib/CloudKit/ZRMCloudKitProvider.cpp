#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitProvider.h"

#include <utility>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitImpl.h"

std::shared_ptr<ZRMCloudKitProvider> ZRMCloudKitProvider::sharedInstance() {
    const auto platform = ZRMPlatform::current();
    return platform->instances->shared<ZRMCloudKitProvider>(
        [&platform] { return std::make_shared<ZRMCloudKitProvider>(platform); });
}

ZRMCloudKitProvider::ZRMCloudKitProvider(std::shared_ptr<const ZRMPlatform> platform)
    : platform_(std::move(platform)) {}

std::shared_ptr<ZRMCloudKit> ZRMCloudKitProvider::cloudKitWithConfiguration(
    const ZRMCloudKitConfiguration& configuration,
    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider) {
    const ZRMLockGuard lock(mutex_);
    if (!cloudKit_) {
        cloudKit_ = ZRMCloudKitImpl::cloudKitWithConfiguration(
            platform_, configuration, std::move(serverTimeProvider),
            zrm_makeCloudKitDetectors(platform_));
    }
    return cloudKit_;
}
