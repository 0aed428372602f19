// Lists a tree of a simulated disk.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ZRMPlatform/Ports/ZRMFileManager.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDisk.h"

class ZRMSimulatedDirectoryEnumerator final : public ZRMDirectoryEnumerator {
  public:
    // `judge` yields 0 or the error that listing the directory of that path fails with.
    using Judge = std::function<int(const std::string& path)>;

    ZRMSimulatedDirectoryEnumerator(std::shared_ptr<ZRMSimulatedDisk> disk,
                                    const std::string& directory, Judge judge);

    std::optional<ZRMDirectoryEntry> next() override;

  private:
    [[nodiscard]] bool isLeftOut(const std::string& path) const;

    std::shared_ptr<ZRMSimulatedDisk> disk_;
    std::string directory_;
    Judge judge_;
    std::string last_;
    std::vector<std::string> unlisted_;  // directories that cannot be listed
};
