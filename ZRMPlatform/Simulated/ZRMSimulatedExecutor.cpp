#include "ZRMPlatform/Simulated/ZRMSimulatedExecutor.h"

#include <utility>

#include "ZRMPlatform/Simulated/ZRMSimulatedCondition.h"

ZRMSimulatedExecutor::ZRMSimulatedExecutor(std::shared_ptr<ZRMSimulatedProcess> process)
    : process_(std::move(process)),
      mainQueue_(makeQueue("main", ZRMSimulatedQueue::Kind::Serial,
                           ZRMQualityOfService::UserInteractive)) {
    nextThreadIdentifier_ = kOutsideThreadIdentifier + 1;
}

std::shared_ptr<ZRMSimulatedQueue> ZRMSimulatedExecutor::makeQueue(std::string label,
                                                                   ZRMSimulatedQueue::Kind kind,
                                                                   ZRMQualityOfService qos) {
    return std::make_shared<ZRMSimulatedQueue>(process_->scheduler(), std::move(label), kind, qos,
                                               nextThreadIdentifier_++);
}

std::shared_ptr<ZRMQueue> ZRMSimulatedExecutor::makeSerialQueue(std::string label,
                                                                ZRMQualityOfService qos) {
    madeQueues_.push_back({label, qos});
    return makeQueue(std::move(label), ZRMSimulatedQueue::Kind::Serial, qos);
}

std::shared_ptr<ZRMQueue> ZRMSimulatedExecutor::concurrentQueue(ZRMQualityOfService qos) {
    auto& queue = concurrentQueues_[qos];
    if (!queue) {
        queue = makeQueue("concurrent." + std::to_string(static_cast<int>(qos)),
                          ZRMSimulatedQueue::Kind::Concurrent, qos);
    }
    return queue;
}

std::shared_ptr<ZRMQueue> ZRMSimulatedExecutor::mainQueue() {
    return mainQueue_;
}

std::uint64_t ZRMSimulatedExecutor::currentThreadIdentifier() const {
    const auto* const queue = process_->scheduler()->currentQueue();
    return queue ? queue->threadIdentifier() : kOutsideThreadIdentifier;
}

std::unique_ptr<ZRMCondition> ZRMSimulatedExecutor::makeCondition() {
    return std::make_unique<ZRMSimulatedCondition>(process_);
}
