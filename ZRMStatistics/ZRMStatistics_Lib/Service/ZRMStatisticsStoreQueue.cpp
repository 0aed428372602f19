#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsStoreQueue.h"

#include <utility>

ZRMStatisticsStoreQueue::ZRMStatisticsStoreQueue(std::shared_ptr<ZRMExecutor> executor,
                                                 std::string name)
    : operations_(std::move(executor), std::move(name), 1) {}

void ZRMStatisticsStoreQueue::add(const std::shared_ptr<ZRMStatisticBaseOperation>& operation) {
    ++*waiting_;
    const ZRMLockGuard lock(mutex_);
    if (group_ && group_->join(operation)) {
        return;
    }
    group_ = std::make_shared<ZRMStatisticsSaveGroup>();
    static_cast<void>(group_->join(operation));
    operations_.addOperationWithBlock(
        [group = group_, waiting = waiting_] { *waiting -= group->run(); });
}

// A block between two store operations keeps them from sharing a save, and the queue's order.
void ZRMStatisticsStoreQueue::addBlock(std::function<void()> block) {
    const ZRMLockGuard lock(mutex_);
    group_.reset();
    operations_.addOperationWithBlock(std::move(block));
}

bool ZRMStatisticsStoreQueue::awaitRoom(std::function<void()> block) {
    if (*waiting_ <= kMaxWaiting) {
        return false;
    }
    addBlock(std::move(block));
    return true;
}
