// The code points of UTF-8 text, one by one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

struct ZRMCodePoint {
    std::int32_t value = 0;  // negative for an ill-formed sequence, taken as long as it goes
    std::size_t length = 0;  // bytes
};

// The first of a text that is not empty.
[[nodiscard]] ZRMCodePoint zrm_firstCodePoint(std::string_view text);
