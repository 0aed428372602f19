// The state of the host application's bundle.
#pragma once

#include <string>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMTableEvent.h"

class ZRMApplicationInfoEvent final : public ZRMTableEvent<ZRMApplicationInfoEvent> {
  public:
    static ZRMEventTable<ZRMApplicationInfoEvent> table();

    ZRMApplicationInfoEvent(std::string applicationMd5,
                            std::shared_ptr<const ZRMCommonParametersProvider> provider);

    [[nodiscard]] const std::string& applicationMd5() const { return applicationMd5_; }

  private:
    std::string applicationMd5_;
};
