// The console log on standard error.
#pragma once

#include "ZRMPlatform/Ports/ZRMConsoleLog.h"

// A closed pipe at the other end raises no signal.
class ZRMLinuxConsoleLog : public ZRMConsoleLog {
  public:
    // To standard error.
    ZRMLinuxConsoleLog();
    // To another descriptor, which the caller keeps open.
    explicit ZRMLinuxConsoleLog(int descriptor) : descriptor_(descriptor) {}

    void write(std::string_view text) override;

  private:
    int descriptor_;
};

// For the parts of the Linux body that live as long as the process.
void zrm_writeToConsole(std::string_view text);
