#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLoggerCollection.h"

#include <algorithm>

#include "ZRMPlatform/Ports/ZRMPlatform.h"

std::shared_ptr<ZRMLoggerCollection> ZRMLoggerCollection::sharedInstance() {
    return ZRMPlatform::current()->instances->shared<ZRMLoggerCollection>(
        [] { return std::make_shared<ZRMLoggerCollection>(); });
}

void ZRMLoggerCollection::addLogger(std::shared_ptr<ZRMLogger> logger) {
    const ZRMLockGuard lock(mutex_);
    if (!logger || std::ranges::find(collection_, logger, &Member::logger) != collection_.end()) {
        return;
    }
    auto& last = collection_.empty() ? first_ : collection_.back().next;
    last.store(&collection_.emplace_back(std::move(logger)), std::memory_order_release);
}

void ZRMLoggerCollection::logMessage(const std::string& message, ZRMLogLevel level) {
    logMessage(message, level, nullptr);
}

void ZRMLoggerCollection::logMessage(const std::string& message, ZRMLogLevel level,
                                     const ZRMLogger* excludeLogger) {
    const ZRMLockGuard lock(mutex_);
    for (const auto* member = first_.load(); member != nullptr; member = member->next.load()) {
        if (member->logger.get() != excludeLogger) {
            member->logger->logMessage(message, level);
        }
    }
}

bool ZRMLoggerCollection::accepts(ZRMLogLevel level) const {
    for (const auto* member = first_.load(std::memory_order_acquire); member != nullptr;
         member = member->next.load(std::memory_order_acquire)) {
        if (level >= member->logger->logLevel()) {
            return true;
        }
    }
    return false;
}
