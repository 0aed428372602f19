#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLoggerCollection.h"

#include <algorithm>

#include "ZRMPlatform/Ports/ZRMPlatform.h"

std::shared_ptr<ZRMLoggerCollection> ZRMLoggerCollection::sharedInstance() {
    return ZRMPlatform::current()->instances->shared<ZRMLoggerCollection>(
        [] { return std::make_shared<ZRMLoggerCollection>(); });
}

void ZRMLoggerCollection::addLogger(std::shared_ptr<ZRMLogger> logger) {
    const std::lock_guard lock(mutex_);
    if (std::ranges::find(collection_, logger) == collection_.end()) {
        collection_.push_back(std::move(logger));
    }
}

void ZRMLoggerCollection::logMessage(const std::string& message, ZRMLogLevel level) {
    logMessage(message, level, nullptr);
}

void ZRMLoggerCollection::logMessage(const std::string& message, ZRMLogLevel level,
                                     const ZRMLogger* excludeLogger) {
    const std::lock_guard lock(mutex_);
    // By index: an observer of a logger may add a logger meanwhile.
    for (std::size_t index = 0; index < collection_.size(); ++index) {
        const auto logger = collection_[index];
        if (logger.get() != excludeLogger) {
            logger->logMessage(message, level);
        }
    }
}

bool ZRMLoggerCollection::accepts(ZRMLogLevel level) const {
    const std::lock_guard lock(mutex_);
    return std::ranges::any_of(collection_,
                               [level](const auto& logger) { return level >= logger->logLevel(); });
}
