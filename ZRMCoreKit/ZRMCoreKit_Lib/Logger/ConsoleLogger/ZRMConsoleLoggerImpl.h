// The console logger.
#pragma once

#include <atomic>
#include <memory>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ConsoleLogger/ZRMConsoleLogger.h"
#include "ZRMPlatform/Ports/ZRMClock.h"
#include "ZRMPlatform/Ports/ZRMConsoleLog.h"
#include "ZRMPlatform/Ports/ZRMExecutor.h"

// Writes each line on the calling thread.
class ZRMConsoleLoggerImpl final : public ZRMConsoleLogger {
  public:
    // The process's one console logger, on the installed platform.
    static std::shared_ptr<ZRMConsoleLoggerImpl> sharedInstance();

    ZRMConsoleLoggerImpl(std::shared_ptr<ZRMConsoleLog> consoleLog, std::shared_ptr<ZRMClock> clock,
                         std::shared_ptr<ZRMExecutor> executor,
                         ZRMLogLevel logLevel = kZRMLogLevelError);

    void logMessage(const std::string& message, ZRMLogLevel level) override;
    [[nodiscard]] ZRMLogLevel logLevel() const override { return logLevel_; }
    void setLogLevel(ZRMLogLevel level) override { logLevel_ = level; }

  private:
    const std::shared_ptr<ZRMConsoleLog> consoleLog_;
    const std::shared_ptr<ZRMClock> clock_;
    const std::shared_ptr<ZRMExecutor> executor_;
    std::atomic<ZRMLogLevel> logLevel_;
};
