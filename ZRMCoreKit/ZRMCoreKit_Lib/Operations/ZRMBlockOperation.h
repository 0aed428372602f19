// An operation that calls a block.
#pragma once

#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMOperation.h"

class ZRMBlockOperation final : public ZRMOperation {
  public:
    static std::shared_ptr<ZRMBlockOperation> blockOperationWithBlock(std::function<void()> block);

    // Throws ZRMInvalidArgument when the block is empty.
    explicit ZRMBlockOperation(std::function<void()> block);

  protected:
    void main() override;

  private:
    std::function<void()> block_;
};
