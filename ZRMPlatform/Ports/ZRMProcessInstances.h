// The process-wide single instances, kept by the platform they run on.
#pragma once

#include <functional>
#include <memory>
#include <typeindex>
#include <typeinfo>
#include <unordered_map>

#include "ZRMPlatform/Ports/ZRMMutex.h"

// One instance a type, made on first use under a lock and kept as long as the platform is. A
// simulated device that "restarts the process" installs a platform with none made yet.
class ZRMProcessInstances {
  public:
    template <class T>
    std::shared_ptr<T> shared(const std::function<std::shared_ptr<T>()>& make) {
        const ZRMLockGuard lock(mutex_);
        auto& slot = instances_[typeid(T)];
        if (!slot) {
            slot = make();
        }
        return std::static_pointer_cast<T>(slot);
    }

    // Lets go of every instance; for a device that ends a process and lives on.
    void dropEverything() {
        std::unordered_map<std::type_index, std::shared_ptr<void>> dropped;  // freed unlocked
        const ZRMLockGuard lock(mutex_);
        dropped.swap(instances_);
    }

  private:
    // Re-entrant: making one instance may ask for another.
    ZRMRecursiveMutex mutex_;
    std::unordered_map<std::type_index, std::shared_ptr<void>> instances_ ZRM_GUARDED_BY(mutex_);
};
