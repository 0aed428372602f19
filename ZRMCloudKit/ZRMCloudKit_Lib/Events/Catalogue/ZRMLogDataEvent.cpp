#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMLogDataEvent.h"

#include <array>
#include <utility>

ZRMEventTable<ZRMLogDataEvent> ZRMLogDataEvent::table() {
    static constexpr std::array kFields{
        zrm_eventField<&ZRMLogDataEvent::logs>("logs", "lines of the log, oldest first"),
    };
    return {"LogDataEvent", 1, kZRMEventPermissionNone, kFields};
}

ZRMLogDataEvent::ZRMLogDataEvent(std::vector<std::string> logs,
                                 std::shared_ptr<const ZRMCommonParametersProvider> provider)
    : ZRMTableEvent(std::move(provider)), logs_(std::move(logs)) {}
