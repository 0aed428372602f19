// The user logged out. Has no body of its own.
#pragma once

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMTableEvent.h"

class ZRMUserLogoutEvent final : public ZRMTableEvent<ZRMUserLogoutEvent> {
  public:
    static ZRMEventTable<ZRMUserLogoutEvent> table();

    using ZRMTableEvent::ZRMTableEvent;
};
