// A chosen set of jailbreak detectors, asked in a fixed order.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "JailbreakDetection/ZRMDeviceJailbreakDetector.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

// May be used from any thread; callers of isJailbroken() run the detectors one after another.
class ZRMDeviceJailbreakDetectorCollection {
  public:
    using Detectors = std::vector<std::shared_ptr<ZRMDeviceJailbreakDetector>>;

    // One detector for each flag of the mask, in the order file-system permissions, URL scheme,
    // system call, loaded images. Verdicts are not cached.
    static std::shared_ptr<ZRMDeviceJailbreakDetectorCollection> collectionWithDetectors(
        const ZRMPlatform& platform, std::uint32_t mask);

    ZRMDeviceJailbreakDetectorCollection(Detectors jailbreakDetectors, bool cacheResults);

    [[nodiscard]] const Detectors& jailbreakDetectors() const { return jailbreakDetectors_; }

    // Whether some detector answers true; those after the first that does are not asked.
    [[nodiscard]] bool isJailbroken();
    // The answer of the detector of that type, asked anew; false when there is none.
    [[nodiscard]] bool isJailbrokenByType(ZRMDeviceJailbreakDetectorType type) const;

  private:
    const Detectors jailbreakDetectors_;
    const bool cacheResults_;

    ZRMMutex mutex_;
    // Guarded by the mutex. Kept even where results are not to be cached.
    bool hasCachedResults_ ZRM_GUARDED_BY(mutex_) = false;
    bool cachedJailbreakDetectionVerdict_ ZRM_GUARDED_BY(mutex_) = false;
};
