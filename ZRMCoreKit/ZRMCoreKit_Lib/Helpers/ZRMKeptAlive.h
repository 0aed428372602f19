// Objects that must live until they are done, though nobody may hold them any more.
#pragma once

#include <memory>
#include <unordered_map>

#include "ZRMPlatform/Ports/ZRMMutex.h"

// The process's one set. Never destroyed, so nothing races at exit. May be used from any thread;
// its lock is taken last.
class ZRMKeptAlive {
  public:
    static ZRMKeptAlive& instance();

    void keep(std::shared_ptr<void> object);
    // What the set held, for the caller to drop where it likes; null when it held none.
    [[nodiscard]] std::shared_ptr<void> release(const void* object);

  private:
    ZRMMutex mutex_;
    std::unordered_map<const void*, std::shared_ptr<void>> objects_ ZRM_GUARDED_BY(mutex_);
};
