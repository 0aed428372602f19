// A signal that is looked at on request and tells all it has to tell in one event.
#pragma once

#include <memory>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMCloudKitEvent.h"

class ZRMEventProvider;

// May be used from any thread, by several at once.
class ZRMEventSource {
  public:
    virtual ~ZRMEventSource() = default;
    // Looks now; may block. Never absent. The event comes from the provider.
    [[nodiscard]] virtual std::shared_ptr<ZRMCloudKitEvent> eventWithProvider(
        const ZRMEventProvider& provider) = 0;
};
