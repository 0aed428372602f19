#include "ZRMPlatform/Linux/ZRMLinuxCondition.h"

#include "ZRMPlatform/Linux/ZRMLinuxWallTime.h"

void ZRMLinuxCondition::lock() {
    mutex_.lock();
}

void ZRMLinuxCondition::unlock() {
    mutex_.unlock();
}

bool ZRMLinuxCondition::waitUntil(ZRMDate deadline) {
    return woken_.waitUntil(mutex_, zrm_timePoint(deadline));
}

void ZRMLinuxCondition::signal() {
    woken_.notifyOne();
}
