// A signal that is looked at on request and tells all it has to tell in one event.
#pragma once

#include <memory>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Envelope/ZRMCommonParametersProvider.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMCloudKitEvent.h"

// May be used from any thread, by several at once.
class ZRMEventSource {
  public:
    virtual ~ZRMEventSource() = default;
    // Looks now; may block. Never absent.
    [[nodiscard]] virtual std::shared_ptr<ZRMCloudKitEvent> eventWithProvider(
        std::shared_ptr<const ZRMCommonParametersProvider> provider) = 0;
};
