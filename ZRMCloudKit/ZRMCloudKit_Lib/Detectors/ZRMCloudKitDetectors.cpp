#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMCloudKitDetectors.h"

#include "ZRMCloudKit/ZRMCloudKit_Lib/SecureDeviceTagProvider/ZRMSecureDeviceTagProvider.h"

ZRMCloudKitDetectors zrm_makeCloudKitDetectors(const std::shared_ptr<const ZRMPlatform>& platform) {
    ZRMCloudKitDetectors detectors;
    detectors.makeJailbreakDetectors = [platform](std::uint32_t mask) {
        return ZRMDeviceJailbreakDetectorCollection::collectionWithDetectors(*platform, mask);
    };
    detectors.dyldWatcher = ZRMDyldWatcher::watcherForPlatform(*platform);
    detectors.codeSignatureWatcher = std::make_shared<ZRMCodeSignatureWatcher>(
        platform->loader, platform->mainBundle, platform->fileManager, platform->digests);
    detectors.makeSecureDeviceTagProvider =
        [platform](const ZRMSecureDeviceTagParameters& parameters) {
            return ZRMSecureDeviceTagProvider::initWithUrl(platform, parameters);
        };
    return detectors;
}
