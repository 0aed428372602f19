// What the event core finds the device's signals with.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "JailbreakDetection/ZRMDeviceJailbreakDetectorCollection.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMBundleHashing.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMCallObserving.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMDeviceLocating.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMEventSource.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMScreenRecordingDetecting.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMScreenshotDetecting.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMSecureDeviceTagProviding.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMTouchIdSensing.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMVpnDetecting.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Policies/ZRMScreenRecordingEventPolicy.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/CodeSignatureWatcher/ZRMCodeSignatureWatcher.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/DyldWatcher/ZRMDyldWatcher.h"

// Each member may be absent; what needs it is then not sent. Members that make something make a new
// one on each call and never yield nothing.
struct ZRMCloudKitDetectors {
    std::shared_ptr<ZRMEventSource> fingerprint;
    // The jailbreak detectors of a mask of kinds, and the images that are told beside their
    // verdicts.
    std::function<std::shared_ptr<ZRMDeviceJailbreakDetectorCollection>(std::uint32_t mask)>
        makeJailbreakDetectors;
    std::shared_ptr<ZRMDyldWatcher> dyldWatcher;
    std::shared_ptr<ZRMCodeSignatureWatcher> codeSignatureWatcher;
    std::shared_ptr<ZRMBundleHashing> bundleHasher;
    std::shared_ptr<ZRMTouchIdSensing> touchId;
    std::shared_ptr<ZRMCallObserving> callObserver;
    std::function<std::shared_ptr<ZRMScreenRecordingDetecting>(
        const ZRMScreenRecordingEventPolicy&)>
        makeScreenRecordingDetector;
    std::function<std::shared_ptr<ZRMVpnDetecting>()> makeVpnDetector;
    std::function<std::shared_ptr<ZRMScreenshotDetecting>()> makeScreenshotDetector;
    // Called on the main queue. The accuracy is in metres, the duration of a detection at most
    // `maxDetectionDuration` seconds.
    std::function<std::shared_ptr<ZRMDeviceLocating>(double accuracy, double maxDetectionDuration)>
        makeDeviceLocator;
    std::function<std::shared_ptr<ZRMSecureDeviceTagProviding>(const ZRMSecureDeviceTagParameters&)>
        makeSecureDeviceTagProvider;
};

// Those that this library has of its own, on that platform.
ZRMCloudKitDetectors zrm_makeCloudKitDetectors(const std::shared_ptr<const ZRMPlatform>& platform);
