// User defaults in property-list files.
#pragma once

#include <memory>
#include <string>

#include "ZRMPlatform/Ports/ZRMConsoleLog.h"
#include "ZRMPlatform/Ports/ZRMUserDefaults.h"

// One file a suite, "DIRECTORY/SUITE.plist", in which bytes of a suite's name other than letters,
// digits, ".", "-" and "_" are written as "%XX". Several processes may use a suite at once.
class ZRMLinuxUserDefaults : public ZRMUserDefaults {
  public:
    ZRMLinuxUserDefaults(std::string directory, std::shared_ptr<ZRMConsoleLog> console);

    std::unique_ptr<ZRMUserDefaultsSuite> openSuite(const std::string& name) override;

  private:
    std::string directory_;
    std::shared_ptr<ZRMConsoleLog> console_;
};
