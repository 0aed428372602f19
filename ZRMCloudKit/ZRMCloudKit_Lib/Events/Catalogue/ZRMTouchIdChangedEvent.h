// The state of the device's biometry.
#pragma once

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMTableEvent.h"

class ZRMTouchIdChangedEvent final : public ZRMTableEvent<ZRMTouchIdChangedEvent> {
  public:
    static ZRMEventTable<ZRMTouchIdChangedEvent> table();

    ZRMTouchIdChangedEvent(bool supported, bool enabled, bool changed,
                           std::shared_ptr<const ZRMCommonParametersProvider> provider);

    [[nodiscard]] bool isSupported() const { return supported_; }
    [[nodiscard]] bool isEnabled() const { return enabled_; }
    [[nodiscard]] bool isChanged() const { return changed_; }

  private:
    bool supported_;
    bool enabled_;
    bool changed_;
};
