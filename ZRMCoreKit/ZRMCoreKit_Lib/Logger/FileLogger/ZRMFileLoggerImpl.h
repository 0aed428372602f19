// The file logger.
#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/FileLogger/ZRMFileLogger.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLoggerCollection.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMOperationQueue.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

// Lines are made on the calling thread and written on a serial queue, in the order of logging. A
// line that cannot be written is lost. Where the file cannot be made, the logger falls silent for
// the rest of the process. Its own failures go to the other loggers of the collection.
class ZRMFileLoggerImpl final : public ZRMFileLogger,
                                public std::enable_shared_from_this<ZRMFileLoggerImpl> {
  public:
    // The process's one file logger: "zrm-traces.log" in the documents directory, errors only.
    static std::shared_ptr<ZRMFileLoggerImpl> sharedInstance();

    // Owned by shared_ptr. Keeps the platform's single ports, not the platform.
    ZRMFileLoggerImpl(const ZRMPlatform& platform, std::weak_ptr<ZRMLoggerCollection> loggers,
                      ZRMLogLevel logLevel, std::string filePath);

    void logMessage(const std::string& message, ZRMLogLevel level) override;
    [[nodiscard]] ZRMLogLevel logLevel() const override { return logLevel_; }
    void setLogLevel(ZRMLogLevel level) override { logLevel_ = level; }

    [[nodiscard]] std::string logFilePath() const override { return tracesFilePath_; }
    void clearLogFile() override;
    void deleteLogFile() override;

  private:
    // These run on the queue, one at a time.
    void writeLine(const std::string& line);
    void truncateFile();
    void removeFile();
    [[nodiscard]] ZRMFileHandle* outputStream();
    [[nodiscard]] std::optional<ZRMError> createLogFileIfNeeded();
    [[nodiscard]] std::optional<ZRMError> createLogFile();
    void reportToOthers(const ZRMError& error);

    void enqueue(std::function<void(ZRMFileLoggerImpl&)> work);

    const std::shared_ptr<ZRMClock> clock_;
    const std::shared_ptr<ZRMExecutor> executor_;
    const std::shared_ptr<ZRMConsoleLog> consoleLog_;
    const std::shared_ptr<ZRMFileManager> fileManager_;
    const std::string documentsDirectory_;
    // Weak: the collection owns its loggers.
    const std::weak_ptr<ZRMLoggerCollection> loggers_;
    const std::string tracesFilePath_;
    std::atomic<ZRMLogLevel> logLevel_;

    // Only touched on the queue.
    bool createLogFileFailed_ = false;
    std::unique_ptr<ZRMFileHandle> outputStream_;

    ZRMOperationQueue queue_;
};
