// An operation that stays running after start() returns, until it calls finish().
#pragma once

#include <atomic>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMOperation.h"
#include "ZRMPlatform/Ports/ZRMConsoleLog.h"

enum class ZRMAsynchronousOperationState : int { Ready = 0, Executing = 1, Finished = 2 };

class ZRMAsynchronousOperation : public ZRMOperation {
  public:
    // The console receives the complaint of an execute() that nobody overrode.
    explicit ZRMAsynchronousOperation(std::shared_ptr<ZRMConsoleLog> consoleLog);

    // Finishes at once when cancelled before; otherwise announces "isExecuting" and executes. Only
    // the first call has an effect.
    void start() final;

    [[nodiscard]] ZRMAsynchronousOperationState state() const { return state_; }
    [[nodiscard]] bool isExecuting() const final;
    [[nodiscard]] bool isFinished() const final;
    [[nodiscard]] bool isAsynchronous() const final { return true; }

  protected:
    // To be overridden; must lead to finish(), at once or later, on any thread.
    virtual void execute();
    // Announces "isExecuting" and "isFinished". Only the first call has an effect. The operation
    // may be destroyed by the time it returns, unless the caller holds it.
    virtual void finish();

  private:
    std::shared_ptr<ZRMConsoleLog> consoleLog_;
    std::atomic<ZRMAsynchronousOperationState> state_{ZRMAsynchronousOperationState::Ready};
    std::atomic<bool> begun_ = false;
    std::atomic<bool> finishing_ = false;
};
