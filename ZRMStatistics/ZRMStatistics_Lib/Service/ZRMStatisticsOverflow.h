// How much the queue may hold.
#pragma once

#include <cstdint>

inline constexpr std::int64_t kZRMStatisticsMaxStorageSize = std::int64_t{10} * 1024 * 1024;

// Whether a queue of `size` bytes is emptied before the next event enters it; one that is exactly
// full is not.
[[nodiscard]] constexpr bool zrm_isStatisticsStorageFull(std::int64_t size,
                                                         std::int64_t maxStorageSize) {
    return size > maxStorageSize;
}
