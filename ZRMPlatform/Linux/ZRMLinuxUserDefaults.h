// User defaults in property-list files.
#pragma once

#include <memory>
#include <string>

#include "ZRMPlatform/Ports/ZRMConsoleLog.h"
#include "ZRMPlatform/Ports/ZRMQueue.h"
#include "ZRMPlatform/Ports/ZRMUserDefaults.h"

// One file a suite, "DIRECTORY/SUITE.plist", in which bytes of a suite's name other than letters,
// digits, ".", "-" and "_" are written as "%XX". Several processes may use a suite at once.
class ZRMLinuxUserDefaults : public ZRMUserDefaults {
  public:
    // What is set is written on the queue, so that nobody waits for the disk.
    ZRMLinuxUserDefaults(std::string directory, std::shared_ptr<ZRMConsoleLog> console,
                         std::shared_ptr<ZRMQueue> writes);

    std::unique_ptr<ZRMUserDefaultsSuite> openSuite(const std::string& name) override;

    // Returns when all that was set in this process is in its files, or could not be written. Also
    // done when the process exits.
    static void synchronize();

  private:
    std::string directory_;
    std::shared_ptr<ZRMConsoleLog> console_;
    std::shared_ptr<ZRMQueue> writes_;
};
