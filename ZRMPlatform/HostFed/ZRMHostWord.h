// One value that the host may tell.
#pragma once

#include <optional>
#include <utility>

#include "ZRMPlatform/Ports/ZRMMutex.h"

// May be used from any thread.
template <class Value>
class ZRMHostWord {
  public:
    void tell(Value value) { exchange(std::move(value)); }
    void forget() { exchange(std::nullopt); }
    // The last one told; absent before that and when it was taken back.
    [[nodiscard]] std::optional<Value> word() const {
        const ZRMLockGuard lock(mutex_);
        return value_;
    }

  private:
    void exchange(std::optional<Value> value) {
        const ZRMLockGuard lock(mutex_);
        value_.swap(value);
    }

    mutable ZRMMutex mutex_;
    std::optional<Value> value_ ZRM_GUARDED_BY(mutex_);
};
