// Every log line of the library goes through here to the loggers there are.
#pragma once

#include <atomic>
#include <deque>
#include <memory>
#include <string>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLogger.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

// May be used from any thread. The lock is held while a line is passed on, so all loggers see the
// lines in one order; it is re-entrant because a logger's observers may log in turn.
class ZRMLoggerCollection {
  public:
    // The process's one collection, empty at first.
    static std::shared_ptr<ZRMLoggerCollection> sharedInstance();

    // Nothing happens when it is absent or in the collection already.
    void addLogger(std::shared_ptr<ZRMLogger> logger);

    void logMessage(const std::string& message, ZRMLogLevel level);
    // To every logger but `excludeLogger`, in the order of their addition.
    void logMessage(const std::string& message, ZRMLogLevel level, const ZRMLogger* excludeLogger);

    // Whether some logger would take a message of that level. Takes no lock: this is asked before
    // every line, and mostly answered with no.
    [[nodiscard]] bool accepts(ZRMLogLevel level) const;

  private:
    // Loggers are only ever added, so the chain can be followed while it grows.
    struct Member {
        explicit Member(std::shared_ptr<ZRMLogger> theLogger) : logger(std::move(theLogger)) {}

        const std::shared_ptr<ZRMLogger> logger;
        std::atomic<const Member*> next = nullptr;
    };

    ZRMRecursiveMutex mutex_;
    std::deque<Member> collection_ ZRM_GUARDED_BY(mutex_);  // its members never move
    std::atomic<const Member*> first_ = nullptr;
};
