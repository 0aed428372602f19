// A unit of work with dependencies, cancellation and observable state.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ZRMPlatform/Ports/ZRMMutex.h"

// Always owned by shared_ptr. State may be read from any thread. Runs once; its code must not
// throw.
class ZRMOperation : public std::enable_shared_from_this<ZRMOperation> {
  public:
    // Told of announced changes ("isCancelled", "isExecuting", "isFinished" and what subclasses
    // add), on the thread that makes them, without any lock held. `isPrior` is true before the
    // change and false after it. The end of "isFinished" is the last announcement: observers are
    // let go then.
    using ChangeObserver = std::function<void(const std::string& key, bool isPrior)>;

    ZRMOperation() = default;
    virtual ~ZRMOperation() = default;
    ZRMOperation(const ZRMOperation&) = delete;
    ZRMOperation& operator=(const ZRMOperation&) = delete;

    // Runs main() on the calling thread and is finished when it returns; only finishes when the
    // operation was cancelled before. Only the first call has an effect.
    virtual void start();
    // Marks the operation; one that has not started will only finish. No effect once finished.
    virtual void cancel();

    [[nodiscard]] bool isCancelled() const { return cancelled_; }
    [[nodiscard]] virtual bool isExecuting() const { return executing_; }
    [[nodiscard]] virtual bool isFinished() const { return finished_; }
    [[nodiscard]] virtual bool isAsynchronous() const { return false; }
    // Whether every dependency has finished; a cancelled operation waits for none.
    [[nodiscard]] bool isReady() const;

    // Before the operation is put on a queue.
    void addDependency(std::shared_ptr<ZRMOperation> operation);
    // Empty once finished: a finished operation lets go of what it waited for.
    [[nodiscard]] std::vector<std::shared_ptr<ZRMOperation>> dependencies() const;

    void addChangeObserver(ChangeObserver observer);

  protected:
    virtual void main() {}

    // A caller whose announcement ends "isFinished" holds the operation itself: its queue drops it.
    void willChangeValueForKey(const std::string& key);
    void didChangeValueForKey(const std::string& key);

  private:
    friend class ZRMOperationQueue;
    using Observers = std::vector<ChangeObserver>;

    void announce(const std::string& key, bool isPrior);
    void letGo();
    // The first dependency from `position` on that has not finished, whose place `position`
    // becomes.
    [[nodiscard]] std::shared_ptr<ZRMOperation> unfinishedDependency(std::size_t& position) const;

    std::atomic<bool> started_ = false;
    std::atomic<bool> cancelled_ = false;
    std::atomic<bool> executing_ = false;
    std::atomic<bool> finished_ = false;
    std::atomic<bool> enqueued_ = false;

    mutable ZRMMutex mutex_;  // guards what follows
    std::vector<std::shared_ptr<ZRMOperation>> dependencies_ ZRM_GUARDED_BY(mutex_);
    std::shared_ptr<const Observers> observers_
        ZRM_GUARDED_BY(mutex_);  // replaced, never changed, so it is read unlocked
};
