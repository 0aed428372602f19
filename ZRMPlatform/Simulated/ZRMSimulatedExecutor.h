// The executor port over the simulated scheduler.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "ZRMPlatform/Ports/ZRMExecutor.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedProcess.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedQueue.h"

// One thread alone, whatever the port promises: everything runs where the test advances the device.
class ZRMSimulatedExecutor final : public ZRMExecutor {
  public:
    static constexpr std::uint64_t kMainThreadIdentifier = 1;
    // Of code that runs in no task, such as the test's own.
    static constexpr std::uint64_t kOutsideThreadIdentifier = 2;

    // A queue that was made, as its maker asked for it.
    struct MadeQueue {
        std::string label;
        ZRMQualityOfService qualityOfService;
    };

    explicit ZRMSimulatedExecutor(std::shared_ptr<ZRMSimulatedProcess> process);

    std::shared_ptr<ZRMQueue> makeSerialQueue(std::string label, ZRMQualityOfService qos) override;
    std::shared_ptr<ZRMQueue> concurrentQueue(ZRMQualityOfService qos) override;
    std::shared_ptr<ZRMQueue> mainQueue() override;
    // The same number for every task of a queue.
    [[nodiscard]] std::uint64_t currentThreadIdentifier() const override;
    std::unique_ptr<ZRMCondition> makeCondition() override;

    // Every serial queue of this process so far, in the order of making.
    [[nodiscard]] const std::vector<MadeQueue>& madeQueues() const { return madeQueues_; }

  private:
    std::shared_ptr<ZRMSimulatedQueue> makeQueue(std::string label, ZRMSimulatedQueue::Kind kind,
                                                 ZRMQualityOfService qos);

    std::shared_ptr<ZRMSimulatedProcess> process_;
    std::uint64_t nextThreadIdentifier_ = kMainThreadIdentifier;
    std::shared_ptr<ZRMSimulatedQueue> mainQueue_;
    std::map<ZRMQualityOfService, std::shared_ptr<ZRMSimulatedQueue>> concurrentQueues_;
    std::vector<MadeQueue> madeQueues_;
};
