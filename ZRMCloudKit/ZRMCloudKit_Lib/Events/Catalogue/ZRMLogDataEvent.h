// Lines of the library's own log.
#pragma once

#include <string>
#include <vector>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMTableEvent.h"

class ZRMLogDataEvent final : public ZRMTableEvent<ZRMLogDataEvent> {
  public:
    static ZRMEventTable<ZRMLogDataEvent> table();

    ZRMLogDataEvent(std::vector<std::string> logs,
                    std::shared_ptr<const ZRMCommonParametersProvider> provider);

    [[nodiscard]] const std::vector<std::string>& logs() const { return logs_; }

  private:
    std::vector<std::string> logs_;
};
