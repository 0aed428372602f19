// The slices of a universal file: several executables, one for each kind of processor.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "ZRMSystemWatcher/ZRMSystemWatcher_Lib/Image/ZRMImageView.h"

struct ZRMUniversalSlice {
    std::uint64_t offset = 0;  // from the file's start
    ZRMImageView image;
};

// The slices in the header's order; those that do not lie inside the file, or overlap one named
// before them, are left out. Absent when the file is not a universal one, in which case it may be
// an executable itself.
std::optional<std::vector<ZRMUniversalSlice>> zrm_slicesOfUniversalFile(const ZRMImageView& file);
