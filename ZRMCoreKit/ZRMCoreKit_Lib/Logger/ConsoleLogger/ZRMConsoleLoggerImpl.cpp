#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ConsoleLogger/ZRMConsoleLoggerImpl.h"

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLogMessage.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

std::shared_ptr<ZRMConsoleLoggerImpl> ZRMConsoleLoggerImpl::sharedInstance() {
    const auto platform = ZRMPlatform::current();
    return platform->instances->shared<ZRMConsoleLoggerImpl>([&platform] {
        return std::make_shared<ZRMConsoleLoggerImpl>(platform->consoleLog, platform->clock,
                                                      platform->executor);
    });
}

ZRMConsoleLoggerImpl::ZRMConsoleLoggerImpl(std::shared_ptr<ZRMConsoleLog> consoleLog,
                                           std::shared_ptr<ZRMClock> clock,
                                           std::shared_ptr<ZRMExecutor> executor,
                                           ZRMLogLevel logLevel)
    : consoleLog_(std::move(consoleLog)),
      clock_(std::move(clock)),
      executor_(std::move(executor)),
      logLevel_(logLevel) {}

void ZRMConsoleLoggerImpl::logMessage(const std::string& message, ZRMLogLevel level) {
    if (level >= logLevel_) {
        consoleLog_->write(ZRMLogMessage::logForMessage(*clock_, *executor_, message, level));
    }
}
