#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMOperationQueue.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <set>
#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Helpers/ZRMKeptAlive.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMBlockOperation.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

std::string zrm_queueNameForClass(const std::string& className) {
    return className + ".queue";
}

// What outlives the queue object. It owns the operations; they know it weakly. A worker is a task
// posted to the executor that takes the first ready operation at the moment it runs, and another
// one when that has finished under its hands: a task for each would cost a change of threads.
class ZRMOperationQueue::State : public std::enable_shared_from_this<State> {
  public:
    using Sequence = std::uint64_t;

    static constexpr int kOperationsOfATask = 16;

    State(std::shared_ptr<ZRMQueue> queue, std::string name, int limit)
        : queue_(std::move(queue)), name_(std::move(name)), limit_(limit) {}

    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] int limit() const { return limit_; }

    void add(const std::vector<std::shared_ptr<ZRMOperation>>& operations);
    void setSuspended(bool suspended);
    [[nodiscard]] bool isSuspended() const;
    [[nodiscard]] std::vector<std::shared_ptr<ZRMOperation>> operations() const;
    [[nodiscard]] std::size_t operationCount() const;
    // Without a queue object the state is kept until its last operation has finished.
    void abandon();

  private:
    enum class Phase { Blocked, Ready, Running };
    struct Entry {
        std::shared_ptr<ZRMOperation> operation;
        Phase phase = Phase::Blocked;
        bool isInHand = false;  // its worker has not come back from start()
    };

    void observe(ZRMOperation& operation, Sequence sequence);
    // Waits for one unfinished dependency after the other, so many dependencies stay cheap.
    void awaitDependencies(const std::shared_ptr<ZRMOperation>& operation, Sequence sequence,
                           std::size_t position);
    void makeReady(Sequence sequence);
    void finished(Sequence sequence);
    void work();
    // The first ready operation, now running, unless nothing may start.
    [[nodiscard]] std::shared_ptr<ZRMOperation> takeNext(Sequence& sequence);
    // Whether the operation has finished, so that its worker is free.
    [[nodiscard]] bool putDown(Sequence sequence);
    void postWorkers() ZRM_REQUIRES(mutex_);
    [[nodiscard]] bool hasRoom() const ZRM_REQUIRES(mutex_);

    const std::shared_ptr<ZRMQueue> queue_;
    const std::string name_;
    const int limit_;

    mutable ZRMMutex mutex_;  // guards what follows; taken before any lock of the executor
    std::map<Sequence, Entry> entries_ ZRM_GUARDED_BY(mutex_);
    std::set<Sequence> ready_ ZRM_GUARDED_BY(mutex_);
    Sequence nextSequence_ ZRM_GUARDED_BY(mutex_) = 0;
    std::size_t workers_ ZRM_GUARDED_BY(mutex_) = 0;  // about to take an operation
    std::size_t running_ ZRM_GUARDED_BY(mutex_) = 0;
    bool suspended_ ZRM_GUARDED_BY(mutex_) = false;
    bool abandoned_ ZRM_GUARDED_BY(mutex_) = false;
};

void ZRMOperationQueue::State::add(const std::vector<std::shared_ptr<ZRMOperation>>& operations) {
    Sequence first = 0;
    {
        const ZRMLockGuard lock(mutex_);
        first = nextSequence_;
        for (const auto& operation : operations) {
            entries_[nextSequence_++] = {operation, Phase::Blocked};
        }
    }
    for (auto sequence = first; const auto& operation : operations) {
        observe(*operation, sequence);
        if (operation->isCancelled()) {
            makeReady(sequence);
        } else {
            awaitDependencies(operation, sequence, 0);
        }
        ++sequence;
    }
}

void ZRMOperationQueue::State::observe(ZRMOperation& operation, Sequence sequence) {
    operation.addChangeObserver(
        [weak = weak_from_this(), sequence](const std::string& key, bool isPrior) {
            if (isPrior || (key != "isFinished" && key != "isCancelled")) {
                return;
            }
            if (const auto self = weak.lock()) {
                key == "isFinished" ? self->finished(sequence) : self->makeReady(sequence);
            }
        });
}

void ZRMOperationQueue::State::awaitDependencies(const std::shared_ptr<ZRMOperation>& operation,
                                                 Sequence sequence, std::size_t position) {
    while (const auto dependency = operation->unfinishedDependency(position)) {
        dependency->addChangeObserver([weak = weak_from_this(), waiting = std::weak_ptr(operation),
                                       sequence, position](const std::string& key, bool isPrior) {
            const auto self = weak.lock();
            const auto waitingOperation = waiting.lock();
            if (self && waitingOperation && !isPrior && key == "isFinished") {
                self->awaitDependencies(waitingOperation, sequence, position + 1);
            }
        });
        if (!dependency->isFinished()) {
            return;
        }
        // It finished before it was observed; going on a second time from its observer is harmless.
    }
    makeReady(sequence);
}

void ZRMOperationQueue::State::makeReady(Sequence sequence) {
    const ZRMLockGuard lock(mutex_);
    const auto entry = entries_.find(sequence);
    if (entry == entries_.end() || entry->second.phase != Phase::Blocked) {
        return;
    }
    entry->second.phase = Phase::Ready;
    ready_.insert(sequence);
    postWorkers();
}

void ZRMOperationQueue::State::finished(Sequence sequence) {
    // Destroyed after the lock is given up: both may be the last reference.
    std::map<Sequence, Entry>::node_type entry;
    std::shared_ptr<void> self;
    const ZRMLockGuard lock(mutex_);
    entry = entries_.extract(sequence);
    if (entry.empty()) {
        return;
    }
    ready_.erase(sequence);
    if (entry.mapped().phase == Phase::Running) {
        --running_;
    }
    if (entry.mapped().isInHand) {
        ++workers_;
    }
    if (abandoned_ && entries_.empty()) {
        self = ZRMKeptAlive::instance().release(this);
    }
    postWorkers();
}

void ZRMOperationQueue::State::work() {
    Sequence sequence = 0;
    for (int count = 0; count < kOperationsOfATask; ++count) {
        const auto operation = takeNext(sequence);
        if (!operation) {
            return;
        }
        operation->start();
        if (!putDown(sequence)) {
            return;
        }
    }
    // Others that use the executor get their turn.
    const ZRMLockGuard lock(mutex_);
    --workers_;
    postWorkers();
}

std::shared_ptr<ZRMOperation> ZRMOperationQueue::State::takeNext(Sequence& sequence) {
    const ZRMLockGuard lock(mutex_);
    --workers_;
    if (suspended_ || ready_.empty()) {
        return nullptr;
    }
    sequence = *ready_.begin();
    ready_.erase(ready_.begin());
    auto& entry = entries_.at(sequence);
    entry.phase = Phase::Running;
    entry.isInHand = true;
    ++running_;
    return entry.operation;
}

bool ZRMOperationQueue::State::putDown(Sequence sequence) {
    const ZRMLockGuard lock(mutex_);
    const auto entry = entries_.find(sequence);
    if (entry != entries_.end()) {
        entry->second.isInHand = false;
    }
    return entry == entries_.end();
}

void ZRMOperationQueue::State::postWorkers() {
    while (!suspended_ && workers_ < ready_.size() && hasRoom()) {
        ++workers_;
        queue_->post([self = shared_from_this()] { self->work(); });
    }
}

bool ZRMOperationQueue::State::hasRoom() const {
    return limit_ < 0 || running_ + workers_ < static_cast<std::size_t>(limit_);
}

void ZRMOperationQueue::State::setSuspended(bool suspended) {
    const ZRMLockGuard lock(mutex_);
    suspended_ = suspended;
    postWorkers();
}

bool ZRMOperationQueue::State::isSuspended() const {
    const ZRMLockGuard lock(mutex_);
    return suspended_;
}

std::vector<std::shared_ptr<ZRMOperation>> ZRMOperationQueue::State::operations() const {
    const ZRMLockGuard lock(mutex_);
    std::vector<std::shared_ptr<ZRMOperation>> all;
    all.reserve(entries_.size());
    for (const auto& [sequence, entry] : entries_) {
        all.push_back(entry.operation);
    }
    return all;
}

std::size_t ZRMOperationQueue::State::operationCount() const {
    const ZRMLockGuard lock(mutex_);
    return entries_.size();
}

void ZRMOperationQueue::State::abandon() {
    const ZRMLockGuard lock(mutex_);
    abandoned_ = true;
    suspended_ = false;
    if (!entries_.empty()) {
        ZRMKeptAlive::instance().keep(shared_from_this());
        postWorkers();
    }
}

ZRMOperationQueue::ZRMOperationQueue(std::shared_ptr<ZRMExecutor> executor, std::string name,
                                     int maxConcurrentOperationCount,
                                     ZRMQualityOfService qualityOfService) {
    auto queue = maxConcurrentOperationCount == 1
                     ? executor->makeSerialQueue(name, qualityOfService)
                     : executor->concurrentQueue(qualityOfService);
    state_ =
        std::make_shared<State>(std::move(queue), std::move(name), maxConcurrentOperationCount);
}

ZRMOperationQueue::~ZRMOperationQueue() {
    state_->abandon();
}

const std::string& ZRMOperationQueue::name() const {
    return state_->name();
}

int ZRMOperationQueue::maxConcurrentOperationCount() const {
    return state_->limit();
}

void ZRMOperationQueue::claim(const std::vector<std::shared_ptr<ZRMOperation>>& operations) {
    for (auto claimed = operations.begin(); claimed != operations.end(); ++claimed) {
        const auto& operation = *claimed;
        if (operation && !operation->started_ && !operation->isExecuting() &&
            !operation->isFinished() && !operation->enqueued_.exchange(true)) {
            continue;
        }
        std::for_each(operations.begin(), claimed,
                      [](const auto& earlier) { earlier->enqueued_ = false; });
        throw ZRMInvalidArgument("An operation can be put on one queue, once, before it starts");
    }
}

void ZRMOperationQueue::addOperation(std::shared_ptr<ZRMOperation> operation) {
    addOperations({std::move(operation)});
}

void ZRMOperationQueue::addOperations(
    const std::vector<std::shared_ptr<ZRMOperation>>& operations) {
    claim(operations);
    state_->add(operations);
}

void ZRMOperationQueue::addOperationWithBlock(std::function<void()> block) {
    addOperation(ZRMBlockOperation::blockOperationWithBlock(std::move(block)));
}

void ZRMOperationQueue::setSuspended(bool suspended) {
    state_->setSuspended(suspended);
}

bool ZRMOperationQueue::isSuspended() const {
    return state_->isSuspended();
}

void ZRMOperationQueue::cancelAllOperations() {
    for (const auto& operation : state_->operations()) {
        operation->cancel();
    }
}

std::size_t ZRMOperationQueue::operationCount() const {
    return state_->operationCount();
}
