// Listing a tree of directories with a bounded number of descriptors.
#pragma once

#include <memory>
#include <string>

#include "ZRMPlatform/Ports/ZRMFileManager.h"

// The path is not empty and holds no NUL. At most kZRMLinuxOpenLevels directories are open at once;
// those above are closed and found again on the way back.
ZRMResult<std::unique_ptr<ZRMDirectoryEnumerator>> zrm_makeLinuxDirectoryEnumerator(
    const std::string& path);

inline constexpr std::size_t kZRMLinuxOpenLevels = 16;
