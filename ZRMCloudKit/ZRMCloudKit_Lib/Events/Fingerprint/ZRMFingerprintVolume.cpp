#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintVolume.h"

#include <array>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"

std::span<const ZRMEventField<ZRMVolumeCapacity>> zrm_fingerprintVolumeFields() {
    static constexpr std::array kFields{
        zrm_eventField<&ZRMVolumeCapacity::total>("size", "bytes, 0 when unknown"),
        zrm_eventField<&ZRMVolumeCapacity::available>("free", "bytes, 0 when unknown"),
    };
    return kFields;
}

ZRMVolumeCapacity zrm_fingerprintVolume(const ZRMVolumes& volumes,
                                        const ZRMDirectories& directories) {
    const auto important = volumes.capacityForImportantUsage("/");
    const auto capacity =
        important ? *important : volumes.fileSystemCapacity(zrm_documentDirectory(directories));
    if (!capacity) {
        zrm_logError(&volumes, "Error: " + capacity.error().localizedDescription());
        return {};
    }
    return capacity.value();
}
