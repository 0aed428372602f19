// The service's queue: changes of the store, and what has its turn between them.
#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMOperationQueue.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMStatisticsSaveGroup.h"

// May be used from any thread. Everything runs one after the other in the order of its adding, also
// after the last reference has gone. Store operations that lie one behind the other share a save
// and one place on the queue.
class ZRMStatisticsStoreQueue {
  public:
    ZRMStatisticsStoreQueue(std::shared_ptr<ZRMExecutor> executor, std::string name);

    void add(const std::shared_ptr<ZRMStatisticBaseOperation>& operation);
    void addBlock(std::function<void()> block);

    // So many operations may wait before more events are to wait: a commit's fill behind the one
    // under way, together a few tens of milliseconds' work.
    static constexpr std::size_t kMaxWaiting = ZRMStatisticsSaveGroup::kMaxOperations;
    // Where more wait, true, and the block is called when they have run.
    bool awaitRoom(std::function<void()> block);

    [[nodiscard]] ZRMOperationQueue& operations() { return operations_; }

  private:
    ZRMOperationQueue operations_;
    const std::shared_ptr<std::atomic<std::size_t>> waiting_ =
        std::make_shared<std::atomic<std::size_t>>(0);

    ZRMMutex mutex_;  // held while something enters the queue
    // That the next store operation may join.
    std::shared_ptr<ZRMStatisticsSaveGroup> group_ ZRM_GUARDED_BY(mutex_);
};
