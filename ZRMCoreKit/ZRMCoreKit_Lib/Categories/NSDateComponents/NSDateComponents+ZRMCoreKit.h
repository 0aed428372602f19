// ISO 8601 durations as calendar fields.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>
#include <string_view>

// What a field holds that was never set.
inline constexpr std::int64_t kZRMUndefinedDateComponent = std::numeric_limits<std::int64_t>::max();

struct ZRMDateComponents {
    std::int64_t year = kZRMUndefinedDateComponent;
    std::int64_t month = kZRMUndefinedDateComponent;
    std::int64_t weekOfYear = kZRMUndefinedDateComponent;
    std::int64_t day = kZRMUndefinedDateComponent;
    std::int64_t hour = kZRMUndefinedDateComponent;
    std::int64_t minute = kZRMUndefinedDateComponent;
    std::int64_t second = kZRMUndefinedDateComponent;

    friend bool operator==(const ZRMDateComponents&, const ZRMDateComponents&) = default;
};

enum class ZRMCalendarUnit : int {
    Unsupported = 0,
    Year = 4,
    Month = 8,
    Day = 16,
    Hour = 32,
    Minute = 64,
    Second = 128,
    WeekOfYear = 8192,
};

enum class ZRMDurationPart : int { Date = 0, Time = 1 };

// The fields of a duration such as "P1DT12H"; absent when it does not read as one. White space
// before a number or designator is passed over, numbers may be signed and saturate at 32 bits, a
// repeated designator replaces the earlier number, designators come in any order, and a duration
// with a "T" loses its weeks.
[[nodiscard]] std::optional<ZRMDateComponents> zrm_dateComponentsFromISO8601DurationString(
    std::string_view duration);

// One side of the "T", without the "P"; absent when it is empty or does not read as that part.
[[nodiscard]] std::optional<ZRMDateComponents> zrm_dateComponentsForISO8601DurationString(
    std::string_view part, ZRMDurationPart durationPart);

// The unit of one upper-case designator. Another text is a broken rule of the interface:
// development builds throw ZRMAssertionFailure, release builds answer Unsupported.
[[nodiscard]] ZRMCalendarUnit zrm_dateCalendarUnitForString(std::string_view letter);
[[nodiscard]] ZRMCalendarUnit zrm_timeCalendarUnitForString(std::string_view letter);
