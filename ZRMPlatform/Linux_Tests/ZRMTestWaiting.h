// Waiting for what other threads do, on the condition itself.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <utility>

// A value that threads change and a test waits on. A wait gives up, false, after half a minute.
template <class Value>
class ZRMAwaited {
  public:
    template <class Change>
    void change(Change apply) {
        const std::lock_guard lock(mutex_);
        apply(value_);
        changed_.notify_all();
    }
    void set(Value value) {
        change([&](Value& held) { held = std::move(value); });
    }
    template <class Predicate>
    [[nodiscard]] bool waitUntil(Predicate holds) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(30), [&] { return holds(value_); });
    }
    [[nodiscard]] Value value() {
        const std::lock_guard lock(mutex_);
        return value_;
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    Value value_{};
};
