// A unit of work with dependencies, cancellation and observable state.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

// Always owned by shared_ptr. State may be read from any thread. Runs once.
class ZRMOperation : public std::enable_shared_from_this<ZRMOperation> {
  public:
    // Told of announced changes, on the thread that makes them, without any lock held. `isPrior` is
    // true before the change and false after it.
    using ChangeObserver = std::function<void(const std::string& key, bool isPrior)>;

    ZRMOperation() = default;
    virtual ~ZRMOperation() = default;
    ZRMOperation(const ZRMOperation&) = delete;
    ZRMOperation& operator=(const ZRMOperation&) = delete;

    // Runs main() on the calling thread and is finished when it returns; only finishes when the
    // operation was cancelled before.
    virtual void start();
    // Marks the operation; one that has not started will only finish.
    virtual void cancel();

    [[nodiscard]] bool isCancelled() const;
    [[nodiscard]] virtual bool isExecuting() const;
    [[nodiscard]] virtual bool isFinished() const;
    [[nodiscard]] virtual bool isAsynchronous() const { return false; }
    // Whether every dependency has finished.
    [[nodiscard]] bool isReady() const;

    // Before the operation is put on a queue.
    void addDependency(std::shared_ptr<ZRMOperation> operation);
    [[nodiscard]] std::vector<std::shared_ptr<ZRMOperation>> dependencies() const;

    void addChangeObserver(ChangeObserver observer);

  protected:
    virtual void main() {}

    void willChangeValueForKey(const std::string& key);
    void didChangeValueForKey(const std::string& key);

  private:
    void announce(const std::string& key, bool isPrior);

    mutable std::mutex mutex_;
    bool cancelled_ = false;
    bool executing_ = false;
    bool finished_ = false;
    std::vector<std::shared_ptr<ZRMOperation>> dependencies_;
    std::vector<ChangeObserver> observers_;
};
