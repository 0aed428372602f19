#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ConsoleLogger/ZRMConsoleLoggerFactory.h"

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ConsoleLogger/ZRMConsoleLoggerImpl.h"

std::shared_ptr<ZRMConsoleLogger> ZRMConsoleLoggerFactory::createLogger() {
    return ZRMConsoleLoggerImpl::sharedInstance();
}
