#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMBaseEvent.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"

ZRMBaseEvent::ZRMBaseEvent() {
    static constexpr const char* kMessage =
        "Don't use that initializer, use -(instancetype)initWithCommonParametersProvider:";
    zrm_logError(this, kMessage);
    throw ZRMInvalidArgument(kMessage);
}

ZRMBaseEvent::ZRMBaseEvent(std::shared_ptr<const ZRMCommonParametersProvider> provider)
    : provider_(std::move(provider)) {}
