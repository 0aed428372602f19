#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMAsynchronousOperation.h"

#include <utility>

ZRMAsynchronousOperation::ZRMAsynchronousOperation(std::shared_ptr<ZRMConsoleLog> consoleLog)
    : consoleLog_(std::move(consoleLog)) {}

void ZRMAsynchronousOperation::start() {
    const auto self = shared_from_this();
    if (begun_.exchange(true) || isFinished()) {
        return;
    }
    if (isCancelled()) {
        finish();
        return;
    }
    willChangeValueForKey("isExecuting");
    state_ = ZRMAsynchronousOperationState::Executing;
    didChangeValueForKey("isExecuting");
    // A cancel() on another thread that came between the two looks saw nothing to finish.
    if (isCancelled()) {
        finish();
        return;
    }
    execute();
}

bool ZRMAsynchronousOperation::isExecuting() const {
    return state() == ZRMAsynchronousOperationState::Executing;
}

bool ZRMAsynchronousOperation::isFinished() const {
    return state() == ZRMAsynchronousOperationState::Finished;
}

void ZRMAsynchronousOperation::execute() {
    consoleLog_->write("Method -execute should be overriden by the subclass\n");
    consoleLog_->write("\n");
    finish();
}

void ZRMAsynchronousOperation::finish() {
    const auto self = shared_from_this();
    if (finishing_.exchange(true)) {
        return;
    }
    willChangeValueForKey("isExecuting");
    willChangeValueForKey("isFinished");
    state_ = ZRMAsynchronousOperationState::Finished;
    didChangeValueForKey("isExecuting");
    didChangeValueForKey("isFinished");
}
