// The line that a message becomes.
#pragma once

#include <string>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLogger.h"
#include "ZRMPlatform/Ports/ZRMClock.h"
#include "ZRMPlatform/Ports/ZRMExecutor.h"

class ZRMLogMessage {
  public:
    // "[%@] [%@%@] [%@] %@\n": the date in UTC, the calling thread's number, ":main" inside the
    // main queue's tasks, the level's text, the message. From any thread.
    static std::string logForMessage(const ZRMClock& clock, ZRMExecutor& executor,
                                     const std::string& message, ZRMLogLevel level);
};
