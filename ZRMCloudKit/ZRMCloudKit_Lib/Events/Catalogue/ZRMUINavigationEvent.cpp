#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMUINavigationEvent.h"

#include <array>
#include <utility>

ZRMEventTable<ZRMUINavigationEvent> ZRMUINavigationEvent::table() {
    static constexpr std::array kFields{
        zrm_eventField<&ZRMUINavigationEvent::navigationPoint>(
            "navigationPoint", "the place, as the host application names it"),
    };
    return {"UINavigationEvent", 1, kZRMEventPermissionNone, kFields};
}

ZRMUINavigationEvent::ZRMUINavigationEvent(
    std::string navigationPoint, std::shared_ptr<const ZRMCommonParametersProvider> provider)
    : ZRMTableEvent(std::move(provider)), navigationPoint_(std::move(navigationPoint)) {}
