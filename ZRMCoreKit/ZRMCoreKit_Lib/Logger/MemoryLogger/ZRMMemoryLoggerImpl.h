// The memory logger.
#pragma once

#include <atomic>
#include <memory>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/MemoryLogger/ZRMMemoryLogger.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Observers/ZRMObserversCollection.h"
#include "ZRMPlatform/Ports/ZRMClock.h"
#include "ZRMPlatform/Ports/ZRMExecutor.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

// Has no capacity of its own: whoever observes it takes the lines in time.
class ZRMMemoryLoggerImpl final : public ZRMMemoryLogger {
  public:
    // The process's one memory logger, on the installed platform.
    static std::shared_ptr<ZRMMemoryLoggerImpl> sharedInstance();

    // Errors only, and empty, at first.
    ZRMMemoryLoggerImpl(const std::shared_ptr<ZRMConsoleLog>& consoleLog,
                        std::shared_ptr<ZRMClock> clock, std::shared_ptr<ZRMExecutor> executor);

    void logMessage(const std::string& message, ZRMLogLevel level) override;
    [[nodiscard]] ZRMLogLevel logLevel() const override { return logLevel_; }
    void setLogLevel(ZRMLogLevel level) override { logLevel_ = level; }

    [[nodiscard]] std::vector<std::string> logs() const override;
    [[nodiscard]] std::int64_t logsSizeInBytes() const override;
    void clean() override;
    [[nodiscard]] std::vector<std::string> takeLogs() override;

    void addObserver(const std::shared_ptr<ZRMMemoryLoggerObserver>& observer) override;
    void removeObserver(const ZRMMemoryLoggerObserver* observer) override;

  private:
    const std::shared_ptr<ZRMClock> clock_;
    const std::shared_ptr<ZRMExecutor> executor_;
    std::atomic<ZRMLogLevel> logLevel_ = kZRMLogLevelError;
    ZRMObserversCollection<ZRMMemoryLoggerObserver> observers_;

    // Re-entrant: observers run under it. Guards what follows.
    mutable ZRMRecursiveMutex mutex_;
    std::int64_t currentSize_ ZRM_GUARDED_BY(mutex_) = 0;  // bytes
    std::vector<std::string> currentLogs_ ZRM_GUARDED_BY(mutex_);
    bool notifying_ ZRM_GUARDED_BY(mutex_) = false;
};
