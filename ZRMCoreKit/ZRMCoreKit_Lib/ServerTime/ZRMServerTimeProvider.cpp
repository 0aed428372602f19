#include "ZRMCoreKit/ZRMCoreKit_Lib/ServerTime/ZRMServerTimeProvider.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDateFormatter/NSDateFormatter+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMDateTimeUtils.h"

ZRMServerTimeProvider::ZRMServerTimeProvider(std::shared_ptr<ZRMClock> clock)
    : clock_(std::move(clock)) {}

void ZRMServerTimeProvider::setTime(const std::string& dateHeader) {
    const ZRMLockGuard lock(mutex_);
    if (serverResponseTime_ != 0 || dateHeader.empty()) {
        return;
    }
    const auto date = zrm_serverTimeFormatter()->dateFromString(dateHeader);
    upTime_ = date ? ZRMDateTimeUtils::getUptime(*clock_) : 0;
    serverResponseTime_ = date ? static_cast<std::int64_t>(date->secondsSince1970) * 1000 : 0;
}

std::int64_t ZRMServerTimeProvider::getTime() const {
    const ZRMLockGuard lock(mutex_);
    if (serverResponseTime_ == 0) {
        return 0;
    }
    return serverResponseTime_ + (ZRMDateTimeUtils::getUptime(*clock_) - upTime_);
}

bool ZRMServerTimeProvider::isValid() const {
    const ZRMLockGuard lock(mutex_);
    return serverResponseTime_ != 0;
}
