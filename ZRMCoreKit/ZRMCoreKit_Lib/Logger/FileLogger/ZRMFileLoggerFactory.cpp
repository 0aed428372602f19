#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/FileLogger/ZRMFileLoggerFactory.h"

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/FileLogger/ZRMFileLoggerImpl.h"

std::shared_ptr<ZRMFileLogger> ZRMFileLoggerFactory::createLogger() {
    return ZRMFileLoggerImpl::sharedInstance();
}
