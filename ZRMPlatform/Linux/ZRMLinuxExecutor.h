// Queues over a worker pool that the whole process shares.
#pragma once

#include "ZRMPlatform/Ports/ZRMExecutor.h"

// Threads start with the first task and are neither joined nor stopped at process exit, which
// therefore never waits for them. The quality of service does not weigh: all queues share the pool.
class ZRMLinuxExecutor : public ZRMExecutor {
  public:
    // Absent: a thread of the library's own is the main queue, one for the process.
    explicit ZRMLinuxExecutor(std::shared_ptr<ZRMQueue> mainQueue = nullptr);

    std::shared_ptr<ZRMQueue> makeSerialQueue(std::string label, ZRMQualityOfService qos) override;
    std::shared_ptr<ZRMQueue> concurrentQueue(ZRMQualityOfService qos) override;
    std::shared_ptr<ZRMQueue> mainQueue() override;
    [[nodiscard]] std::uint64_t currentThreadIdentifier() const override;
    std::unique_ptr<ZRMCondition> makeCondition() override;

  private:
    const std::shared_ptr<ZRMQueue> hostMainQueue_;
};
