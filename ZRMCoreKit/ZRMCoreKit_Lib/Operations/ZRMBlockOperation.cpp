#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMBlockOperation.h"

#include <utility>

#include "ZRMPlatform/Ports/Values/ZRMError.h"

std::shared_ptr<ZRMBlockOperation> ZRMBlockOperation::blockOperationWithBlock(
    std::function<void()> block) {
    return std::make_shared<ZRMBlockOperation>(std::move(block));
}

ZRMBlockOperation::ZRMBlockOperation(std::function<void()> block) : block_(std::move(block)) {
    if (!block_) {
        throw ZRMInvalidArgument("Invalid parameter not satisfying: block");
    }
}

void ZRMBlockOperation::main() {
    // What the block holds is let go as soon as it has run.
    const auto block = std::exchange(block_, nullptr);
    block();
}
