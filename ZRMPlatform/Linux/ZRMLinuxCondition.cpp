#include "ZRMPlatform/Linux/ZRMLinuxCondition.h"

#include "ZRMPlatform/Linux/ZRMLinuxWallTime.h"

void ZRMLinuxCondition::lock() {
    mutex_.lock();
}

void ZRMLinuxCondition::unlock() {
    mutex_.unlock();
}

bool ZRMLinuxCondition::waitUntil(ZRMDate deadline) {
    std::unique_lock held(mutex_, std::adopt_lock);
    const auto status = woken_.wait_until(held, zrm_timePoint(deadline));
    held.release();  // the caller goes on holding it
    return status == std::cv_status::no_timeout;
}

void ZRMLinuxCondition::signal() {
    woken_.notify_one();
}
