// The host application opened a session.
#pragma once

#include <string>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMTableEvent.h"

class ZRMSessionIdEvent final : public ZRMTableEvent<ZRMSessionIdEvent> {
  public:
    static ZRMEventTable<ZRMSessionIdEvent> table();

    ZRMSessionIdEvent(std::string sessionId,
                      std::shared_ptr<const ZRMCommonParametersProvider> provider);

    [[nodiscard]] const std::string& sessionId() const { return sessionId_; }

  private:
    std::string sessionId_;
};
