// A dictionary kept in a property-list file that several processes may change.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "ZRMPlatform/Linux/ZRMLinuxPropertyList.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"
#include "ZRMPlatform/Ports/Values/ZRMResult.h"
#include "ZRMPlatform/Ports/ZRMConsoleLog.h"

// Changes are made under a lock file ("PATH.lock") that holds between threads and processes, and
// replace the file in one step, so that readers need no lock. A file that does not read as a
// dictionary is moved aside ("PATH.damaged-SECONDS"), named on the console, and counts as empty.
// May be used from any thread; every operation may block on the disk and on other writers.
class ZRMLinuxPropertyListFile {
  public:
    // Until when an update() holds: on stable storage, or as long as the system runs, which does
    // not wait for the disk.
    enum class Durability { Disk, System };

    ZRMLinuxPropertyListFile(std::string path, std::shared_ptr<ZRMConsoleLog> console,
                             Durability durability = Durability::Disk);

    [[nodiscard]] const std::string& path() const { return path_; }

    // An empty dictionary where there is no file.
    [[nodiscard]] ZRMResult<ZRMLinuxPropertyList> read() const;

    // Hands the dictionary to `change` and writes it when that returns true. An error means that
    // nothing was written.
    std::optional<ZRMError> update(const std::function<bool(plist_t)>& change);

  private:
    // Absent when the file is damaged.
    [[nodiscard]] ZRMResult<std::optional<ZRMLinuxPropertyList>> readOnce() const;
    [[nodiscard]] ZRMResult<ZRMLinuxPropertyList> readUnderLock() const;
    [[nodiscard]] std::optional<ZRMError> moveAside() const;

    std::string path_;
    std::shared_ptr<ZRMConsoleLog> console_;
    Durability durability_;
};
