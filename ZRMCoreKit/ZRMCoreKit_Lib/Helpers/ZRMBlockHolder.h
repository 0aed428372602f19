// Carries a callback where an object is wanted.
#pragma once

#include <functional>
#include <memory>

// Immutable; may be used from any thread.
class ZRMBlockHolder {
  public:
    static std::shared_ptr<ZRMBlockHolder> holderWithBlock(std::function<void()> block);

    // Throws ZRMInvalidArgument when the block is empty.
    explicit ZRMBlockHolder(std::function<void()> block);

    void invoke() const;

  private:
    const std::function<void()> block_;
};
