// Hands out the file logger.
#pragma once

#include <memory>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/FileLogger/ZRMFileLogger.h"

class ZRMFileLoggerFactory {
  public:
    // The process's shared one, not a new one.
    static std::shared_ptr<ZRMFileLogger> createLogger();
};
