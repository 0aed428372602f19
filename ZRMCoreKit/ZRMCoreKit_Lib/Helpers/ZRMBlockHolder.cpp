#include "ZRMCoreKit/ZRMCoreKit_Lib/Helpers/ZRMBlockHolder.h"

#include <utility>

#include "ZRMPlatform/Ports/Values/ZRMError.h"

std::shared_ptr<ZRMBlockHolder> ZRMBlockHolder::holderWithBlock(std::function<void()> block) {
    return std::make_shared<ZRMBlockHolder>(std::move(block));
}

ZRMBlockHolder::ZRMBlockHolder(std::function<void()> block) : block_(std::move(block)) {
    if (!block_) {
        throw ZRMInvalidArgument("Invalid parameter not satisfying: block");
    }
}

void ZRMBlockHolder::invoke() const {
    block_();
}
