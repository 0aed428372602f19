#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMApplicationInfoEvent.h"

#include <array>
#include <utility>

ZRMEventTable<ZRMApplicationInfoEvent> ZRMApplicationInfoEvent::table() {
    static constexpr std::array kFields{
        zrm_eventField<&ZRMApplicationInfoEvent::applicationMd5>(
            "applicationMd5", "MD5 digest of the bundle's files, hexadecimal"),
    };
    return {"ApplicationInfoEvent", 1, kZRMEventPermissionNone, kFields};
}

ZRMApplicationInfoEvent::ZRMApplicationInfoEvent(
    std::string applicationMd5, std::shared_ptr<const ZRMCommonParametersProvider> provider)
    : ZRMTableEvent(std::move(provider)), applicationMd5_(std::move(applicationMd5)) {}
