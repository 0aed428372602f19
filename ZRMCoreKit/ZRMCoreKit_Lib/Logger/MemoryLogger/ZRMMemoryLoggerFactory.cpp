#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/MemoryLogger/ZRMMemoryLoggerFactory.h"

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/MemoryLogger/ZRMMemoryLoggerImpl.h"

std::shared_ptr<ZRMMemoryLogger> ZRMMemoryLoggerFactory::createLogger() {
    return ZRMMemoryLoggerImpl::sharedInstance();
}
