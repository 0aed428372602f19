#include "ZRMPlatform/Ports/ZRMPlatform.h"

#include <atomic>

#include "ZRMPlatform/Ports/ZRMMutex.h"

namespace {

// Never destroyed: threads of the library may still ask while the process exits.
struct Installed {
    ZRMMutex mutex;
    std::shared_ptr<const ZRMPlatform> platform ZRM_GUARDED_BY(mutex);
    std::atomic<std::uint64_t> generation = 0;
};

Installed& installed() {
    static auto* const instance = new Installed;
    return *instance;
}

}  // namespace

std::shared_ptr<const ZRMPlatform> ZRMPlatform::current() {
    auto& slot = installed();
    const ZRMLockGuard lock(slot.mutex);
    if (!slot.platform) {
        slot.platform = zrm_makeDefaultPlatform();
        ++slot.generation;
    }
    return slot.platform;
}

void ZRMPlatform::install(std::shared_ptr<const ZRMPlatform> platform) {
    auto& slot = installed();
    std::shared_ptr<const ZRMPlatform> previous;  // released after the lock
    const ZRMLockGuard lock(slot.mutex);
    previous = std::exchange(slot.platform, std::move(platform));
    ++slot.generation;
}

std::uint64_t ZRMPlatform::generation() {
    return installed().generation;
}
