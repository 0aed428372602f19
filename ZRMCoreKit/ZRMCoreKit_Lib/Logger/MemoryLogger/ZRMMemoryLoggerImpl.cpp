#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/MemoryLogger/ZRMMemoryLoggerImpl.h"

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLogMessage.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

std::shared_ptr<ZRMMemoryLoggerImpl> ZRMMemoryLoggerImpl::sharedInstance() {
    const auto platform = ZRMPlatform::current();
    return platform->instances->shared<ZRMMemoryLoggerImpl>([&platform] {
        return std::make_shared<ZRMMemoryLoggerImpl>(platform->consoleLog, platform->clock,
                                                     platform->executor);
    });
}

ZRMMemoryLoggerImpl::ZRMMemoryLoggerImpl(const std::shared_ptr<ZRMConsoleLog>& consoleLog,
                                         std::shared_ptr<ZRMClock> clock,
                                         std::shared_ptr<ZRMExecutor> executor)
    : clock_(std::move(clock)), executor_(std::move(executor)), observers_(consoleLog) {}

void ZRMMemoryLoggerImpl::logMessage(const std::string& message, ZRMLogLevel level) {
    if (level < logLevel_) {
        return;
    }
    const ZRMLockGuard lock(mutex_);
    const std::string line(zrm_trimmedControlCharacters(
        ZRMLogMessage::logForMessage(*clock_, *executor_, message, level)));
    currentSize_ += static_cast<std::int64_t>(line.size());
    currentLogs_.push_back(line);
    if (notifying_) {
        return;  // an observer logs: announcing that to it would have no end
    }
    notifying_ = true;
    observers_.notifyWithBlock(
        [this, &line](ZRMMemoryLoggerObserver& observer) { observer.memoryLogger(*this, line); });
    notifying_ = false;
}

std::vector<std::string> ZRMMemoryLoggerImpl::logs() const {
    const ZRMLockGuard lock(mutex_);
    return currentLogs_;
}

std::int64_t ZRMMemoryLoggerImpl::logsSizeInBytes() const {
    const ZRMLockGuard lock(mutex_);
    return currentSize_;
}

void ZRMMemoryLoggerImpl::clean() {
    static_cast<void>(takeLogs());
}

std::vector<std::string> ZRMMemoryLoggerImpl::takeLogs() {
    const ZRMLockGuard lock(mutex_);
    currentSize_ = 0;
    return std::exchange(currentLogs_, {});
}

void ZRMMemoryLoggerImpl::addObserver(const std::shared_ptr<ZRMMemoryLoggerObserver>& observer) {
    observers_.addObserver(observer);
}

void ZRMMemoryLoggerImpl::removeObserver(const ZRMMemoryLoggerObserver* observer) {
    observers_.removeObserver(observer);
}
