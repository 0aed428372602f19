// Hands out the memory logger.
#pragma once

#include <memory>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/MemoryLogger/ZRMMemoryLogger.h"

class ZRMMemoryLoggerFactory {
  public:
    // The process's shared one, not a new one.
    static std::shared_ptr<ZRMMemoryLogger> createLogger();
};
