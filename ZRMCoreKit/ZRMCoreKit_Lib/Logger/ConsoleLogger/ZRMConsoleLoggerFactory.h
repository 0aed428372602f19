// Hands out the console logger.
#pragma once

#include <memory>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ConsoleLogger/ZRMConsoleLogger.h"

class ZRMConsoleLoggerFactory {
  public:
    // The process's shared one, not a new one.
    static std::shared_ptr<ZRMConsoleLogger> createLogger();
};
