// A moment of wall-clock time.
#pragma once

#include <compare>

struct ZRMDate {
    // Seconds since 1970-01-01 00:00:00 UTC, fractions included; negative before it.
    double secondsSince1970 = 0;

    [[nodiscard]] ZRMDate addingSeconds(double seconds) const {
        return {secondsSince1970 + seconds};
    }
    // Positive when this moment is later than `other`.
    [[nodiscard]] double secondsSince(ZRMDate other) const {
        return secondsSince1970 - other.secondsSince1970;
    }

    // The linter takes what clang 14 makes of this for a null pointer.
    // NOLINTNEXTLINE(modernize-use-nullptr)
    friend auto operator<=>(const ZRMDate&, const ZRMDate&) = default;
};
