#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMCloudKitDetectors.h"

#include "ZRMCloudKit/ZRMCloudKit_Lib/Biometry/ZRMTouchIdSensor.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/BundleHash/ZRMMd5Hasher.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/CallObserver/ZRMCallObserver.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMFingerprintSource.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Location/ZRMDeviceLocator.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Network/ZRMVPNDetector.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/ScreenCapture/ZRMScreenRecordingDetector.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/ScreenCapture/ZRMScreenShotDetector.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/SecureDeviceTagProvider/ZRMSecureDeviceTagProvider.h"

namespace {

void addScreenDetectors(ZRMCloudKitDetectors& detectors,
                        const std::shared_ptr<const ZRMPlatform>& platform) {
    detectors.makeScreenRecordingDetector =
        [platform](const ZRMScreenRecordingEventPolicy& policy) {
            return std::make_shared<ZRMScreenRecordingDetector>(
                policy, platform->screens, platform->notifications,
                platform->executor->concurrentQueue(ZRMQualityOfService::Default));
        };
    detectors.makeScreenshotDetector = [platform] {
        return std::make_shared<ZRMScreenShotDetector>(platform->notifications);
    };
}

}  // namespace

ZRMCloudKitDetectors zrm_makeCloudKitDetectors(const std::shared_ptr<const ZRMPlatform>& platform) {
    ZRMCloudKitDetectors detectors;
    detectors.fingerprint = std::make_shared<ZRMFingerprintSource>(platform);
    detectors.makeJailbreakDetectors = [platform](std::uint32_t mask) {
        return ZRMDeviceJailbreakDetectorCollection::collectionWithDetectors(*platform, mask);
    };
    detectors.dyldWatcher = ZRMDyldWatcher::watcherForPlatform(*platform);
    detectors.codeSignatureWatcher = std::make_shared<ZRMCodeSignatureWatcher>(
        platform->loader, platform->mainBundle, platform->fileManager, platform->digests);
    detectors.callObserver = ZRMCallObserver::observerForPlatform(*platform);
    addScreenDetectors(detectors, platform);
    detectors.makeVpnDetector = [platform] {
        return std::make_shared<ZRMVPNDetector>(platform->networkInterfaces,
                                                platform->notifications);
    };
    detectors.bundleHasher =
        std::make_shared<ZRMMd5Hasher>(platform->fileManager, platform->digests);
    detectors.touchId = std::make_shared<ZRMTouchIdSensor>(platform->localAuthentication);
    detectors.makeDeviceLocator = [platform](double accuracy, double maxDetectionDuration) {
        return ZRMDeviceLocator::deviceLocatorWithLocationManager(
            platform, platform->locationServices->makeLocationManager(accuracy),
            maxDetectionDuration);
    };
    detectors.makeSecureDeviceTagProvider =
        [platform](const ZRMSecureDeviceTagParameters& parameters) {
            return ZRMSecureDeviceTagProvider::initWithUrl(platform, parameters);
        };
    return detectors;
}
