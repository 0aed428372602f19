// The process's own log for people at a console.
#pragma once

#include <string_view>

class ZRMConsoleLog {
  public:
    virtual ~ZRMConsoleLog() = default;
    // Writes the text as it stands, whole, not mixed with another thread's. Failures are swallowed.
    virtual void write(std::string_view text) = 0;
};
