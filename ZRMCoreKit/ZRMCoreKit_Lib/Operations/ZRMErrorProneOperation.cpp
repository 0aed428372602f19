#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMErrorProneOperation.h"

#include <utility>

std::optional<ZRMError> ZRMErrorProneOperation::error() const {
    const ZRMLockGuard lock(errorMutex_);
    return error_;
}

void ZRMErrorProneOperation::cancel() {
    const auto self = shared_from_this();
    ZRMAsynchronousOperation::cancel();
    if (claimEnd()) {
        finish();
    }
}

void ZRMErrorProneOperation::finishWithError(std::optional<ZRMError> error) {
    const auto self = shared_from_this();
    if (!claimEnd()) {
        return;
    }
    willChangeValueForKey("error");
    {
        const ZRMLockGuard lock(errorMutex_);
        error_ = std::move(error);
    }
    didChangeValueForKey("error");
    finish();
}

bool ZRMErrorProneOperation::claimEnd() {
    return isExecuting() && !endClaimed_.exchange(true);
}
