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

    // Finishes at once when cancelled before; otherwise announces "isExecuting" and executes.
    void start() final;

    [[nodiscard]] ZRMAsynchronousOperationState state() const;
    [[nodiscard]] bool isExecuting() const final;
    [[nodiscard]] bool isFinished() const final;
    [[nodiscard]] bool isAsynchronous() const final { return true; }

  protected:
    // To be overridden; must lead to finish(), at once or later, on any thread.
    virtual void execute();
    // Announces "isExecuting" and "isFinished". Only the first call has an effect.
    virtual void finish();

    // Ready or executing to finished, once: true for the caller that made the change.
    [[nodiscard]] bool finishOnceFrom(ZRMAsynchronousOperationState expected);

  private:
    std::shared_ptr<ZRMConsoleLog> consoleLog_;
    std::atomic<ZRMAsynchronousOperationState> state_{ZRMAsynchronousOperationState::Ready};
};
