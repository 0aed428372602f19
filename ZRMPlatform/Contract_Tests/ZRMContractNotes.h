// What tasks under test noted, in order.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

class ZRMContractNotes {
  public:
    using Predicate = std::function<bool(const std::vector<std::string>&)>;

    void add(const std::string& text) {
        const std::lock_guard lock(mutex_);
        notes_.push_back(text);
        added_.notify_all();
    }
    [[nodiscard]] std::vector<std::string> all() {
        const std::lock_guard lock(mutex_);
        return notes_;
    }
    // Blocks until the notes fit; false when they do not within half a minute.
    bool blockUntil(const Predicate& fits) {
        std::unique_lock lock(mutex_);
        return added_.wait_for(lock, std::chrono::seconds(30), [&] { return fits(notes_); });
    }

  private:
    std::mutex mutex_;
    std::condition_variable added_;
    std::vector<std::string> notes_;
};
