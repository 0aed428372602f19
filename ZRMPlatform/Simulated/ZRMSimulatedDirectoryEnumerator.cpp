#include "ZRMPlatform/Simulated/ZRMSimulatedDirectoryEnumerator.h"

#include <algorithm>
#include <utility>

ZRMSimulatedDirectoryEnumerator::ZRMSimulatedDirectoryEnumerator(
    std::shared_ptr<ZRMSimulatedDisk> disk, const std::string& directory, Judge judge)
    : disk_(std::move(disk)),
      directory_(ZRMSimulatedDisk::normalized(directory)),
      judge_(std::move(judge)),
      last_(directory_ + "/") {}

std::optional<ZRMDirectoryEntry> ZRMSimulatedDirectoryEnumerator::next() {
    for (;;) {
        auto path = disk_->pathAfter(last_);
        if (!path || !path->starts_with(directory_ + "/")) {
            return std::nullopt;
        }
        last_ = *path;
        if (isLeftOut(last_)) {
            continue;
        }
        const bool isDirectory = disk_->holdsDirectory(last_);
        if (isDirectory && judge_(last_) != 0) {
            unlisted_.push_back(last_);
        }
        return ZRMDirectoryEntry{last_, isDirectory};
    }
}

bool ZRMSimulatedDirectoryEnumerator::isLeftOut(const std::string& path) const {
    return std::ranges::any_of(
        unlisted_, [&path](const auto& directory) { return path.starts_with(directory + "/"); });
}
