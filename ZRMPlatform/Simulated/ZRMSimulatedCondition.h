// A condition on which simulated threads wait.
#pragma once

#include <cstddef>
#include <memory>

#include "ZRMPlatform/Ports/ZRMCondition.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedProcess.h"

// A wait runs other due tasks, and lets virtual time pass when there are none, until it is
// signalled or the deadline comes. Waits nest: an outer one goes on only after the inner ones
// ended. A wait without anything to wait for (a deadline centuries ahead, no task, no timer) is a
// deadlock and ends the program with a message. Throws ZRMSimulatedProcessEnded when the process is
// killed.
class ZRMSimulatedCondition final : public ZRMCondition {
  public:
    explicit ZRMSimulatedCondition(std::shared_ptr<ZRMSimulatedProcess> process);

    // Ends the program when the lock is held: with one thread it would never come free.
    void lock() override;
    void unlock() override;
    bool waitUntil(ZRMDate deadline) override;
    void signal() override;

  private:
    std::shared_ptr<ZRMSimulatedProcess> process_;
    bool locked_ = false;
    std::size_t waiting_ = 0;
    std::size_t signals_ = 0;
};
