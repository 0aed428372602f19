// Runs operations in order of their addition, as dependencies and the concurrency limit allow.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMOperation.h"
#include "ZRMPlatform/Ports/ZRMExecutor.h"

// "%@.queue" with the class name.
std::string zrm_queueNameForClass(const std::string& className);

// May be used from any thread; no lock is held while operation code runs. Among ready operations
// the one added first starts first. An operation added stays alive until it has finished, even when
// the queue is dropped before. An operation counts against the limit from its start to its finish.
class ZRMOperationQueue {
  public:
    static constexpr int kUnlimited = -1;

    ZRMOperationQueue(std::shared_ptr<ZRMExecutor> executor, std::string name,
                      int maxConcurrentOperationCount = kUnlimited,
                      ZRMQualityOfService qualityOfService = ZRMQualityOfService::Default);
    // Operations that have not started still run, a suspension ends.
    ~ZRMOperationQueue();
    ZRMOperationQueue(const ZRMOperationQueue&) = delete;
    ZRMOperationQueue& operator=(const ZRMOperationQueue&) = delete;

    [[nodiscard]] const std::string& name() const;
    [[nodiscard]] int maxConcurrentOperationCount() const;

    // Throws ZRMInvalidArgument, and adds nothing, for an operation that is absent, was put on a
    // queue before, or has started.
    void addOperation(std::shared_ptr<ZRMOperation> operation);
    // All of them before any starts; does not wait.
    void addOperations(const std::vector<std::shared_ptr<ZRMOperation>>& operations);
    void addOperationWithBlock(std::function<void()> block);

    // While suspended nothing starts, not even to finish a cancelled operation; what runs goes on.
    void setSuspended(bool suspended);
    [[nodiscard]] bool isSuspended() const;

    // Cancels every operation that is waiting or running.
    void cancelAllOperations();
    // Waiting and running operations.
    [[nodiscard]] std::size_t operationCount() const;

  private:
    class State;
    // Claims all of them for this queue, or throws and claims none.
    static void claim(const std::vector<std::shared_ptr<ZRMOperation>>& operations);

    std::shared_ptr<State> state_;
};
