#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMSessionIdEvent.h"

#include <array>
#include <utility>

ZRMEventTable<ZRMSessionIdEvent> ZRMSessionIdEvent::table() {
    static constexpr std::array kFields{
        zrm_eventField<&ZRMSessionIdEvent::sessionId>("sessionId",
                                                      "the host application's session identifier"),
    };
    return {"SessionIdEvent", 1, kZRMEventPermissionNone, kFields};
}

ZRMSessionIdEvent::ZRMSessionIdEvent(std::string sessionId,
                                     std::shared_ptr<const ZRMCommonParametersProvider> provider)
    : ZRMTableEvent(std::move(provider)), sessionId_(std::move(sessionId)) {}
