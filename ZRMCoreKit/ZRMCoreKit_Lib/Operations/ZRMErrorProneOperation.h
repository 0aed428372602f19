// An asynchronous operation with an error for a result.
#pragma once

#include <atomic>
#include <optional>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMAsynchronousOperation.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

class ZRMErrorProneOperation : public ZRMAsynchronousOperation {
  public:
    using ZRMAsynchronousOperation::ZRMAsynchronousOperation;

    // Absent on success and until the operation ends. Its change is announced as "error", before
    // "isFinished".
    [[nodiscard]] std::optional<ZRMError> error() const;

    // Cancels, and finishes when executing.
    void cancel() override;

  protected:
    // Stores the error and finishes, only while executing; otherwise the error is dropped.
    void finishWithError(std::optional<ZRMError> error);

  private:
    // True for the first of those who want to end the operation while it executes.
    [[nodiscard]] bool claimEnd();

    std::atomic<bool> endClaimed_ = false;
    mutable ZRMMutex errorMutex_;
    std::optional<ZRMError> error_ ZRM_GUARDED_BY(errorMutex_);
};
