// A weak, locked set of observers.
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "ZRMPlatform/Ports/ZRMConsoleLog.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

// May be used from any thread. A member that was destroyed drops out by itself. The lock is held
// during notification: a callback must not add or remove observers of the same collection.
template <class Observer>
class ZRMObserversCollection {
  public:
    explicit ZRMObserversCollection(std::shared_ptr<ZRMConsoleLog> consoleLog)
        : consoleLog_(std::move(consoleLog)) {}

    // A member that is there already is left alone, with a warning on the console.
    void addObserver(const std::shared_ptr<Observer>& observer) {
        const ZRMLockGuard lock(mutex_);
        dropDestroyed();
        if (find(observer.get()) != observers_.end()) {
            consoleLog_->write("<WARNING>: Attempt to add observer which had been added already\n");
            return;
        }
        observers_.push_back({observer, observer.get()});
    }

    // By address, so that an observer may leave in its own destructor.
    void removeObserver(const Observer* observer) {
        const ZRMLockGuard lock(mutex_);
        const auto member = find(observer);
        if (member == observers_.end()) {
            consoleLog_->write(
                "<WARNING>: Attempt to remove observer which hasn't been added yet\n");
            return;
        }
        observers_.erase(member);
    }

    void removeAll() {
        const ZRMLockGuard lock(mutex_);
        observers_.clear();
    }

    // Calls back once with each living member, in no particular order.
    void notifyWithBlock(const std::function<void(Observer&)>& block) {
        // Let go of after the lock: one of them may be the last, and leave in its destructor.
        std::vector<std::shared_ptr<Observer>> living;
        const ZRMLockGuard lock(mutex_);
        dropDestroyed();
        for (const auto& member : observers_) {
            if (auto observer = member.weak.lock()) {
                living.push_back(std::move(observer));
            }
        }
        for (const auto& observer : living) {
            block(*observer);
        }
    }

  private:
    struct Member {
        std::weak_ptr<Observer> weak;
        const Observer* address;
    };

    auto find(const Observer* observer) ZRM_REQUIRES(mutex_) {
        return std::ranges::find(observers_, observer, &Member::address);
    }

    void dropDestroyed() ZRM_REQUIRES(mutex_) {
        std::erase_if(observers_, [](const Member& member) { return member.weak.expired(); });
    }

    std::shared_ptr<ZRMConsoleLog> consoleLog_;
    ZRMMutex mutex_;
    std::vector<Member> observers_ ZRM_GUARDED_BY(mutex_);
};
