// A condition whose deadlines follow the wall clock.
#pragma once

#include <condition_variable>
#include <mutex>

#include "ZRMPlatform/Ports/ZRMCondition.h"

class ZRMLinuxCondition : public ZRMCondition {
  public:
    void lock() override;
    void unlock() override;
    bool waitUntil(ZRMDate deadline) override;
    void signal() override;

  private:
    std::mutex mutex_;
    std::condition_variable woken_;
};
