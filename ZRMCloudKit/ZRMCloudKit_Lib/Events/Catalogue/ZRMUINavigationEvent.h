// The user moved to another place of the host application.
#pragma once

#include <string>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMTableEvent.h"

class ZRMUINavigationEvent final : public ZRMTableEvent<ZRMUINavigationEvent> {
  public:
    static ZRMEventTable<ZRMUINavigationEvent> table();

    ZRMUINavigationEvent(std::string navigationPoint,
                         std::shared_ptr<const ZRMCommonParametersProvider> provider);

    [[nodiscard]] const std::string& navigationPoint() const { return navigationPoint_; }

  private:
    std::string navigationPoint_;
};
