// A condition whose deadlines follow the wall clock.
#pragma once

#include "ZRMPlatform/Ports/ZRMCondition.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

class ZRMLinuxCondition : public ZRMCondition {
  public:
    void lock() override ZRM_ACQUIRE(mutex_);
    void unlock() override ZRM_RELEASE(mutex_);
    bool waitUntil(ZRMDate deadline) override ZRM_REQUIRES(mutex_);
    void signal() override;

  private:
    ZRMMutex mutex_;
    ZRMConditionVariable woken_;
};
