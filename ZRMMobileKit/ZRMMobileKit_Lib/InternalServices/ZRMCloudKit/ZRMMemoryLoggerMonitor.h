// Takes the lines out of the memory logger before they become many or old.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/MemoryLogger/ZRMMemoryLogger.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/RunLoop/ZRMRunLoop.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Timer/ZRMTimer.h"
#include "ZRMPlatform/Ports/ZRMExecutor.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

// May be used from any thread, but not started or stopped from inside its own callback. Every line
// is handed over exactly once.
class ZRMMemoryLoggerMonitor final : public ZRMMemoryLoggerObserver,
                                     public std::enable_shared_from_this<ZRMMemoryLoggerMonitor> {
  public:
    // Gets the lines taken, oldest first; there may be none.
    using NotifyBlock = std::function<void(std::vector<std::string> logs)>;

    // The limit is in bytes, the interval in seconds. Owned by shared_ptr.
    static std::shared_ptr<ZRMMemoryLoggerMonitor> initWithMemoryLoggger(
        std::shared_ptr<ZRMMemoryLogger> memoryLogger, std::int64_t memoryLimit,
        double timeInterval, std::shared_ptr<ZRMExecutor> executor);
    ~ZRMMemoryLoggerMonitor() override;

    // Calls back whenever the limit is reached, on the thread that logged the line, and after each
    // interval, on the current run loop of this call. Reaching the limit begins the interval anew.
    void startWithNotifyBlock(NotifyBlock notifyBlock);
    // No call begins any more.
    void stop();

    void memoryLogger(ZRMMemoryLogger& logger, const std::string& didReceiveLog) override;

  private:
    ZRMMemoryLoggerMonitor(std::shared_ptr<ZRMMemoryLogger> memoryLogger, std::int64_t memoryLimit,
                           double timeInterval, std::shared_ptr<ZRMExecutor> executor);

    [[nodiscard]] bool isMemoryLimitReached() const;
    void notify();
    void restartTimer();
    void stopTimer();

    const std::shared_ptr<ZRMMemoryLogger> memoryLogger_;
    const std::int64_t memoryLimit_;
    const double timeInterval_;
    const std::shared_ptr<ZRMExecutor> executor_;

    // Guards what follows. Never held while the logger or the callback is called: the logger calls
    // this monitor with its own lock held.
    ZRMMutex mutex_;
    NotifyBlock notifyBlock_ ZRM_GUARDED_BY(mutex_);
    std::shared_ptr<ZRMRunLoop> runLoop_ ZRM_GUARDED_BY(mutex_);
    std::shared_ptr<ZRMTimer> timer_ ZRM_GUARDED_BY(mutex_);
};
