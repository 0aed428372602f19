// Every log line of the library goes through here to the loggers there are.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLogger.h"

// May be used from any thread. The lock is held while a line is passed on, so all loggers see the
// lines in one order; it is re-entrant because a logger's observers may log in turn.
class ZRMLoggerCollection {
  public:
    // The process's one collection, empty at first.
    static std::shared_ptr<ZRMLoggerCollection> sharedInstance();

    // Nothing happens when it is in the collection already.
    void addLogger(std::shared_ptr<ZRMLogger> logger);

    void logMessage(const std::string& message, ZRMLogLevel level);
    // To every logger but `excludeLogger`, in the order of their addition.
    void logMessage(const std::string& message, ZRMLogLevel level, const ZRMLogger* excludeLogger);

    // Whether some logger would take a message of that level.
    [[nodiscard]] bool accepts(ZRMLogLevel level) const;

  private:
    mutable std::recursive_mutex mutex_;
    std::vector<std::shared_ptr<ZRMLogger>> collection_;
};
