#include "ZRMCoreKit/ZRMCoreKit_Lib/Helpers/ZRMKeptAlive.h"

#include <utility>

ZRMKeptAlive& ZRMKeptAlive::instance() {
    static auto& keptAlive = *new ZRMKeptAlive;
    return keptAlive;
}

void ZRMKeptAlive::keep(std::shared_ptr<void> object) {
    const void* key = object.get();
    const ZRMLockGuard lock(mutex_);
    objects_.try_emplace(key, std::move(object));
}

std::shared_ptr<void> ZRMKeptAlive::release(const void* object) {
    const ZRMLockGuard lock(mutex_);
    auto node = objects_.extract(object);
    return node.empty() ? nullptr : std::move(node.mapped());
}
