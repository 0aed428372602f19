#include "JailbreakDetection/ZRMDeviceJailbreakDetectorCollection.h"

#include <algorithm>
#include <utility>

#include "JailbreakDetection/Detectors/ZRMDeviceJailbreakDyldImagesDetector.h"
#include "JailbreakDetection/Detectors/ZRMDeviceJailbreakFSPermissionsDetector.h"
#include "JailbreakDetection/Detectors/ZRMDeviceJailbreakSysCallsDetector.h"
#include "JailbreakDetection/Detectors/ZRMDeviceJailbreakUrlSchemesDetector.h"

std::shared_ptr<ZRMDeviceJailbreakDetectorCollection>
ZRMDeviceJailbreakDetectorCollection::collectionWithDetectors(const ZRMPlatform& platform,
                                                              std::uint32_t mask) {
    Detectors detectors;
    if ((mask & ZRMDeviceJailbreakDetectorFSPermissions) != 0) {
        detectors.push_back(std::make_shared<ZRMDeviceJailbreakFSPermissionsDetector>(
            platform.fileAccess, platform.mainBundle));
    }
    if ((mask & ZRMDeviceJailbreakDetectorUrlSchemes) != 0) {
        detectors.push_back(std::make_shared<ZRMDeviceJailbreakUrlSchemesDetector>(
            platform.urlOpener, platform.executor, platform.clock));
    }
    if ((mask & ZRMDeviceJailbreakDetectorSysCalls) != 0) {
        detectors.push_back(
            std::make_shared<ZRMDeviceJailbreakSysCallsDetector>(platform.commandProcessor));
    }
    if ((mask & ZRMDeviceJailbreakDetectorDyldImages) != 0) {
        detectors.push_back(
            std::make_shared<ZRMDeviceJailbreakDyldImagesDetector>(platform.mainBundle));
    }
    return std::make_shared<ZRMDeviceJailbreakDetectorCollection>(std::move(detectors), false);
}

ZRMDeviceJailbreakDetectorCollection::ZRMDeviceJailbreakDetectorCollection(
    Detectors jailbreakDetectors, bool cacheResults)
    : jailbreakDetectors_(std::move(jailbreakDetectors)), cacheResults_(cacheResults) {}

bool ZRMDeviceJailbreakDetectorCollection::isJailbroken() {
    const ZRMLockGuard lock(mutex_);
    if (cacheResults_ && hasCachedResults_) {
        return cachedJailbreakDetectionVerdict_;
    }
    cachedJailbreakDetectionVerdict_ = std::ranges::any_of(
        jailbreakDetectors_, [](const auto& detector) { return detector->isJailbroken(); });
    hasCachedResults_ = true;
    return cachedJailbreakDetectionVerdict_;
}

bool ZRMDeviceJailbreakDetectorCollection::isJailbrokenByType(
    ZRMDeviceJailbreakDetectorType type) const {
    const auto found = std::ranges::find_if(jailbreakDetectors_, [type](const auto& detector) {
        return detector->detectorType() == type;
    });
    return found != jailbreakDetectors_.end() && (*found)->isJailbroken();
}
