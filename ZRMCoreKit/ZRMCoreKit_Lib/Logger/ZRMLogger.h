// A sink of log messages that filters by level.
#pragma once

#include <cstdint>
#include <string>

using ZRMLogLevel = std::int64_t;
inline constexpr ZRMLogLevel kZRMLogLevelVerbose = 0;  // "VER"
inline constexpr ZRMLogLevel kZRMLogLevelError = 1;    // "ERR"

// May be used from any thread.
class ZRMLogger {
  public:
    virtual ~ZRMLogger() = default;
    // Accepts messages whose level is at or above the logger's.
    virtual void logMessage(const std::string& message, ZRMLogLevel level) = 0;
    [[nodiscard]] virtual ZRMLogLevel logLevel() const = 0;
    virtual void setLogLevel(ZRMLogLevel level) = 0;
};
