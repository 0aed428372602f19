#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMScreenshotEvent.h"

#include <array>
#include <utility>

ZRMEventTable<ZRMScreenshotEvent> ZRMScreenshotEvent::table() {
    static constexpr std::array kFields{
        zrm_eventField<&ZRMScreenshotEvent::isScreenshotTaken>("screenshot",
                                                               "a screenshot was taken"),
    };
    return {"iOSScreenshotEvent", 1, kZRMEventPermissionNone, kFields};
}

ZRMScreenshotEvent::ZRMScreenshotEvent(bool screenshotTaken,
                                       std::shared_ptr<const ZRMCommonParametersProvider> provider)
    : ZRMTableEvent(std::move(provider)), screenshotTaken_(screenshotTaken) {}
