#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSFileManager/NSFileManager+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ConsoleLogger/ZRMConsoleLoggerFactory.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/FileLogger/ZRMFileLoggerFactory.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/MemoryLogger/ZRMMemoryLoggerFactory.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileServiceConfiguration+ZRMMobileKit.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileServiceImpl.h"

namespace {

bool isExpired(std::optional<ZRMDate> creationDate, double keepInterval, ZRMDate now) {
    return !creationDate || now.secondsSince(*creationDate) > keepInterval;
}

}  // namespace

void ZRMMobileServiceImpl::createConsoleLogger() {
    const auto logger = ZRMConsoleLoggerFactory::createLogger();
    logger->setLogLevel(internalLogLevelFrom(configuration_.logLevel()));
    loggerCollection_->addLogger(logger);
}

void ZRMMobileServiceImpl::createFileLoggerIfNeeded(const ZRMLoggerSettings& settings) {
    if (!settings.writeLogsToFile()) {
        return;
    }
    const auto logger = ZRMFileLoggerFactory::createLogger();
    logger->setLogLevel(internalLogLevelFrom(configuration_.logLevel()));
    resetFileLoggerIfNeeded(*logger, settings);
    loggerCollection_->addLogger(logger);
}

void ZRMMobileServiceImpl::resetFileLoggerIfNeeded(ZRMFileLogger& fileLogger,
                                                   const ZRMLoggerSettings& settings) {
    if (!settings.keepLogsInFile()) {
        fileLogger.clearLogFile();
        return;
    }
    const auto creationDate =
        zrm_creationDateOfItemAtPath(*platform_->fileManager, fileLogger.logFilePath());
    if (isExpired(creationDate, settings.logFileKeepInterval(), platform_->clock->now())) {
        fileLogger.deleteLogFile();
    }
}

std::shared_ptr<ZRMMemoryLogger> ZRMMobileServiceImpl::createMemoryLoggerIfNeeded(
    const ZRMEventSettings& settings) {
    if (settings.isLogDataEventDisabled()) {
        return nullptr;
    }
    auto logger = ZRMMemoryLoggerFactory::createLogger();
    logger->setLogLevel(kZRMLogLevelVerbose);
    loggerCollection_->addLogger(logger);
    return logger;
}
