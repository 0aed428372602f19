// What every event keeps: the provider of the parameters that all events share.
#pragma once

#include <memory>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Envelope/ZRMCommonParametersProvider.h"

// Immutable; may be used from any thread.
class ZRMBaseEvent {
  public:
    // Refused: logs and throws ZRMInvalidArgument.
    [[deprecated(
        "Don't use that initializer, use "
        "-(instancetype)initWithCommonParametersProvider:")]] ZRMBaseEvent();
    explicit ZRMBaseEvent(std::shared_ptr<const ZRMCommonParametersProvider> provider);
    virtual ~ZRMBaseEvent() = default;

    [[nodiscard]] const std::shared_ptr<const ZRMCommonParametersProvider>& provider() const {
        return provider_;
    }

  private:
    std::shared_ptr<const ZRMCommonParametersProvider> provider_;
};
