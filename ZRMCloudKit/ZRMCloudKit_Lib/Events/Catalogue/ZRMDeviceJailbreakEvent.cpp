#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMDeviceJailbreakEvent.h"

#include <array>
#include <utility>

namespace {

std::vector<ZRMDictionary> written(const std::vector<ZRMDyldImageDescriptor>& images) {
    std::vector<ZRMDictionary> objects;
    objects.reserve(images.size());
    for (const auto& image : images) {
        objects.push_back(zrm_eventBody(image, ZRMDeviceJailbreakEvent::imageTable()));
    }
    return objects;
}

}  // namespace

std::span<const ZRMEventField<ZRMDyldImageDescriptor>> ZRMDeviceJailbreakEvent::imageTable() {
    static constexpr std::array kFields{
        zrm_eventField<&ZRMDyldImageDescriptor::name>("path", "the image's file"),
        zrm_eventField<&ZRMDyldImageDescriptor::vmaddr>("vmaddr", "where its header is mapped"),
    };
    return kFields;
}

ZRMEventTable<ZRMDeviceJailbreakEvent> ZRMDeviceJailbreakEvent::table() {
    using Event = ZRMDeviceJailbreakEvent;
    static constexpr std::array kFields{
        zrm_eventField<&Event::cydiaCheck>("cydiaCheck", "a package manager's URL can be opened"),
        // A number, unlike its neighbours.
        zrm_eventField<&Event::systemFunctionCall>("systemFunctionCall",
                                                   "1 when a command processor is available, or 0"),
        zrm_eventField<&Event::writePermissionsInBundle>(
            "writePermissionsInBundle", "rights that the sandbox of a stock device does not give"),
        zrm_eventField<&Event::onloadImages>("onloadImages", "images recorded as they were loaded"),
        zrm_eventField<&Event::currentImages>("currentImages", "images loaded now"),
    };
    return {"DeviceJailbreakEvent", 1, kZRMEventPermissionNone, kFields};
}

ZRMDeviceJailbreakEvent::ZRMDeviceJailbreakEvent(
    std::shared_ptr<ZRMDeviceJailbreakDetectorCollection> detectorCollection,
    std::shared_ptr<ZRMDyldWatcher> dyldWatcher,
    std::shared_ptr<const ZRMCommonParametersProvider> provider)
    : ZRMTableEvent(std::move(provider)),
      detectorCollection_(std::move(detectorCollection)),
      dyldWatcher_(std::move(dyldWatcher)) {}

bool ZRMDeviceJailbreakEvent::cydiaCheck() const {
    return detectorCollection_->isJailbrokenByType(ZRMDeviceJailbreakDetectorUrlSchemes);
}

std::uint64_t ZRMDeviceJailbreakEvent::systemFunctionCall() const {
    return detectorCollection_->isJailbrokenByType(ZRMDeviceJailbreakDetectorSysCalls) ? 1 : 0;
}

bool ZRMDeviceJailbreakEvent::writePermissionsInBundle() const {
    return detectorCollection_->isJailbrokenByType(ZRMDeviceJailbreakDetectorFSPermissions);
}

std::vector<ZRMDictionary> ZRMDeviceJailbreakEvent::onloadImages() const {
    return written(dyldWatcher_->attachedDyldImages());
}

std::vector<ZRMDictionary> ZRMDeviceJailbreakEvent::currentImages() const {
    return written(dyldWatcher_->currentDyldImages());
}
