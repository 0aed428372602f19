// Traits of a jailbroken device, and the images in the process.
#pragma once

#include <cstdint>
#include <vector>

#include "JailbreakDetection/ZRMDeviceJailbreakDetectorCollection.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMTableEvent.h"
#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/DyldWatcher/ZRMDyldWatcher.h"

// The detectors are asked and the images listed when the body is built, which may block.
class ZRMDeviceJailbreakEvent final : public ZRMTableEvent<ZRMDeviceJailbreakEvent> {
  public:
    static ZRMEventTable<ZRMDeviceJailbreakEvent> table();
    // The members of one image.
    static std::span<const ZRMEventField<ZRMDyldImageDescriptor>> imageTable();

    ZRMDeviceJailbreakEvent(
        std::shared_ptr<ZRMDeviceJailbreakDetectorCollection> detectorCollection,
        std::shared_ptr<ZRMDyldWatcher> dyldWatcher,
        std::shared_ptr<const ZRMCommonParametersProvider> provider);

    [[nodiscard]] const std::shared_ptr<ZRMDeviceJailbreakDetectorCollection>& detectorCollection()
        const {
        return detectorCollection_;
    }
    [[nodiscard]] const std::shared_ptr<ZRMDyldWatcher>& dyldWatcher() const {
        return dyldWatcher_;
    }

    // A type that the collection lacks is not a trait.
    [[nodiscard]] bool cydiaCheck() const;
    [[nodiscard]] std::uint64_t systemFunctionCall() const;  // 1 or 0
    [[nodiscard]] bool writePermissionsInBundle() const;
    [[nodiscard]] std::vector<ZRMDictionary> onloadImages() const;
    [[nodiscard]] std::vector<ZRMDictionary> currentImages() const;

  private:
    std::shared_ptr<ZRMDeviceJailbreakDetectorCollection> detectorCollection_;
    std::shared_ptr<ZRMDyldWatcher> dyldWatcher_;
};
