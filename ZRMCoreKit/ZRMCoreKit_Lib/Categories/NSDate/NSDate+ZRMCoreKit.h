// Dates as people and servers read them, and durations as seconds.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ZRMPlatform/Ports/Values/ZRMDate.h"
#include "ZRMPlatform/Ports/ZRMDevice.h"

inline constexpr int zrm_secondsPerDay() {
    return 86400;
}
inline constexpr int zrm_secondsPerHour() {
    return 3600;
}
inline constexpr int zrm_secondsPerMinute() {
    return 60;
}

// What stands for a duration that does not read as one.
inline constexpr double kZRMUnknownTimeInterval = -1;

// Seconds in the days, hours, minutes and seconds of an ISO 8601 duration; its years, months and
// weeks count nothing. kZRMUnknownTimeInterval when it does not read as a duration (so does
// "PT-1S").
[[nodiscard]] double zrm_timeIntervalFromISO8601DurationString(std::string_view duration);

// With the shared formatters, in the device's time zone.
[[nodiscard]] std::string zrm_isoDescription(ZRMDate date);
[[nodiscard]] std::string zrm_serverTimeDescription(ZRMDate date);

enum class ZRMDateFormatterStyle { None = 0, Short = 1, Medium = 2, Long = 3, Full = 4 };

// As the locale (an ICU identifier; the device's where none is given) writes dates for people, in
// the device's time zone. Two styles of None make an empty text, as does a date that is not finite.
[[nodiscard]] std::string zrm_descriptionWithLocale(const ZRMLocaleSource& source, ZRMDate date,
                                                    const std::optional<std::string>& locale,
                                                    ZRMDateFormatterStyle dateStyle,
                                                    ZRMDateFormatterStyle timeStyle);
[[nodiscard]] std::string zrm_localDescriptionWithDateStyle(const ZRMLocaleSource& source,
                                                            ZRMDate date,
                                                            ZRMDateFormatterStyle dateStyle,
                                                            ZRMDateFormatterStyle timeStyle);
// Date style medium, no time.
[[nodiscard]] std::string zrm_mediumLocalDescriptionForDate(const ZRMLocaleSource& source,
                                                            ZRMDate date);
