// A mutex with a condition on which threads wait.
#pragma once

#include "ZRMPlatform/Ports/Values/ZRMDate.h"

class ZRMCondition {
  public:
    virtual ~ZRMCondition() = default;
    virtual void lock() = 0;
    virtual void unlock() = 0;
    // With the lock held. Gives up the lock while waiting and holds it again on return. True when
    // woken before `deadline`, false when the deadline passed first. May wake without a signal.
    virtual bool waitUntil(ZRMDate deadline) = 0;
    // Wakes one waiter, if there is one.
    virtual void signal() = 0;
};
