#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMOperation.h"

#include <utility>

void ZRMOperation::start() {
    const auto self = shared_from_this();
    if (started_.exchange(true)) {
        return;
    }
    const bool runs = !isCancelled();
    if (runs) {
        willChangeValueForKey("isExecuting");
        executing_ = true;
        didChangeValueForKey("isExecuting");
        main();
        willChangeValueForKey("isExecuting");
    }
    willChangeValueForKey("isFinished");
    executing_ = false;
    finished_ = true;
    if (runs) {
        didChangeValueForKey("isExecuting");
    }
    didChangeValueForKey("isFinished");
}

void ZRMOperation::cancel() {
    const auto self = shared_from_this();
    if (isCancelled() || isFinished()) {
        return;
    }
    willChangeValueForKey("isCancelled");
    cancelled_ = true;
    didChangeValueForKey("isCancelled");
}

bool ZRMOperation::isReady() const {
    std::size_t position = 0;
    return isCancelled() || unfinishedDependency(position) == nullptr;
}

void ZRMOperation::addDependency(std::shared_ptr<ZRMOperation> operation) {
    const ZRMLockGuard lock(mutex_);
    dependencies_.push_back(std::move(operation));
}

std::vector<std::shared_ptr<ZRMOperation>> ZRMOperation::dependencies() const {
    const ZRMLockGuard lock(mutex_);
    return dependencies_;
}

void ZRMOperation::addChangeObserver(ChangeObserver observer) {
    const ZRMLockGuard lock(mutex_);
    auto observers =
        observers_ ? std::make_shared<Observers>(*observers_) : std::make_shared<Observers>();
    observers->push_back(std::move(observer));
    observers_ = std::move(observers);
}

void ZRMOperation::willChangeValueForKey(const std::string& key) {
    announce(key, true);
}

void ZRMOperation::didChangeValueForKey(const std::string& key) {
    announce(key, false);
    if (key == "isFinished") {
        letGo();
    }
}

void ZRMOperation::announce(const std::string& key, bool isPrior) {
    std::shared_ptr<const Observers> observers;
    {
        const ZRMLockGuard lock(mutex_);
        observers = observers_;
    }
    if (!observers) {
        return;
    }
    for (const auto& observer : *observers) {
        observer(key, isPrior);
    }
}

void ZRMOperation::letGo() {
    std::vector<std::shared_ptr<ZRMOperation>> dependencies;
    std::shared_ptr<const Observers> observers;
    const ZRMLockGuard lock(mutex_);
    dependencies.swap(dependencies_);
    observers.swap(observers_);
}

std::shared_ptr<ZRMOperation> ZRMOperation::unfinishedDependency(std::size_t& position) const {
    for (;; ++position) {
        std::shared_ptr<ZRMOperation> dependency;
        {
            const ZRMLockGuard lock(mutex_);
            if (position >= dependencies_.size()) {
                return nullptr;
            }
            dependency = dependencies_[position];
        }
        if (!dependency->isFinished()) {
            return dependency;
        }
    }
}
