// Conversions of numbers that hold for every input.
#pragma once

#include <cstdint>
#include <limits>

// Truncates toward zero; saturates beyond the range; 0 for a value that is not a number.
[[nodiscard]] inline std::int64_t zrm_int64FromDouble(double value) {
    constexpr double kTwoTo63 = 9223372036854775808.0;
    if (value >= kTwoTo63) {
        return std::numeric_limits<std::int64_t>::max();
    }
    if (value < -kTwoTo63) {
        return std::numeric_limits<std::int64_t>::min();
    }
    return value == value ? static_cast<std::int64_t>(value) : 0;
}
