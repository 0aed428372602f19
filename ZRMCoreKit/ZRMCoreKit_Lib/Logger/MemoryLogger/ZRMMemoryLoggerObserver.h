// Who wants to know of lines in memory.
#pragma once

#include <string>

class ZRMMemoryLogger;

class ZRMMemoryLoggerObserver {
  public:
    virtual ~ZRMMemoryLoggerObserver() = default;
    // On the logging thread, under the logger's lock, which is re-entrant: the observer may use the
    // logger. What it logs itself is kept but not announced.
    virtual void memoryLogger(ZRMMemoryLogger& logger, const std::string& didReceiveLog) = 0;
};
