#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMUserLogoutEvent.h"

ZRMEventTable<ZRMUserLogoutEvent> ZRMUserLogoutEvent::table() {
    return {"UserLogoutEvent", 1, kZRMEventPermissionNone, {}};
}
