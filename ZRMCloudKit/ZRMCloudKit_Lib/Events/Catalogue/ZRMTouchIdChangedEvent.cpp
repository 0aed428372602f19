#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMTouchIdChangedEvent.h"

#include <array>
#include <utility>

ZRMEventTable<ZRMTouchIdChangedEvent> ZRMTouchIdChangedEvent::table() {
    static constexpr std::array kFields{
        zrm_eventField<&ZRMTouchIdChangedEvent::isSupported>("touchIdAvailable",
                                                             "the device has biometry"),
        zrm_eventField<&ZRMTouchIdChangedEvent::isEnabled>("touchIdEnabled",
                                                           "biometry is enrolled and can be used"),
        zrm_eventField<&ZRMTouchIdChangedEvent::isChanged>(
            "touchIdChanged", "the enrolment is another than the one last reported"),
    };
    return {"TouchIdChangedEvent", 1, kZRMEventPermissionNone, kFields};
}

ZRMTouchIdChangedEvent::ZRMTouchIdChangedEvent(
    bool supported, bool enabled, bool changed,
    std::shared_ptr<const ZRMCommonParametersProvider> provider)
    : ZRMTableEvent(std::move(provider)),
      supported_(supported),
      enabled_(enabled),
      changed_(changed) {}
