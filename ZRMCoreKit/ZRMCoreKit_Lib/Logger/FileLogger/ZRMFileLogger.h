// A logger that appends to a trace file.
#pragma once

#include <string>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLogger.h"

class ZRMFileLogger : public ZRMLogger {
  public:
    [[nodiscard]] virtual std::string logFilePath() const = 0;
    // Empties the file, after the lines logged so far; it keeps its creation date.
    virtual void clearLogFile() = 0;
    // Removes the file, after the lines logged so far; the next line makes a new one.
    virtual void deleteLogFile() = 0;
};
