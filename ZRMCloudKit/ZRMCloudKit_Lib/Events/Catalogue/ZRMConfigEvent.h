// The settings in force.
#pragma once

#include <optional>
#include <string>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMTableEvent.h"

class ZRMConfigEvent final : public ZRMTableEvent<ZRMConfigEvent> {
  public:
    static ZRMEventTable<ZRMConfigEvent> table();

    ZRMConfigEvent(ZRMDictionary appliedConfig,
                   std::shared_ptr<const ZRMCommonParametersProvider> provider);

    [[nodiscard]] const ZRMDictionary& appliedConfig() const { return appliedConfig_; }

    // Pretty-printed JSON; absent when the settings hold what JSON cannot express.
    [[nodiscard]] std::optional<std::string> appliedConfigText() const;

  private:
    ZRMDictionary appliedConfig_;
};
