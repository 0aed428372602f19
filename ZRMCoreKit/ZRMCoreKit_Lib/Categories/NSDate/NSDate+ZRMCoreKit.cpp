#include <cmath>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDate/NSDate+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDateComponents/NSDateComponents+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDateFormatter/NSDateFormatter+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMIcuDateFormat.h"

namespace {

UDateFormatStyle icuStyle(ZRMDateFormatterStyle style) {
    switch (style) {
        case ZRMDateFormatterStyle::Short:
            return UDAT_SHORT;
        case ZRMDateFormatterStyle::Medium:
            return UDAT_MEDIUM;
        case ZRMDateFormatterStyle::Long:
            return UDAT_LONG;
        case ZRMDateFormatterStyle::Full:
            return UDAT_FULL;
        case ZRMDateFormatterStyle::None:
            break;
    }
    return UDAT_NONE;
}

}  // namespace

double zrm_timeIntervalFromISO8601DurationString(std::string_view duration) {
    const auto components = zrm_dateComponentsFromISO8601DurationString(duration);
    if (!components) {
        return kZRMUnknownTimeInterval;
    }
    double seconds = 0;
    const auto add = [&seconds](std::int64_t count, std::int64_t secondsEach) {
        if (count != kZRMUndefinedDateComponent) {
            seconds += static_cast<double>(count * secondsEach);
        }
    };
    add(components->day, zrm_secondsPerDay());
    add(components->hour, zrm_secondsPerHour());
    add(components->minute, zrm_secondsPerMinute());
    add(components->second, 1);
    return seconds;
}

std::string zrm_isoDescription(ZRMDate date) {
    return zrm_iso8601DateTimeFormatter()->stringFromDate(date);
}

std::string zrm_serverTimeDescription(ZRMDate date) {
    return zrm_serverTimeFormatter()->stringFromDate(date);
}

std::string zrm_descriptionWithLocale(const ZRMLocaleSource& source, ZRMDate date,
                                      const std::optional<std::string>& locale,
                                      ZRMDateFormatterStyle dateStyle,
                                      ZRMDateFormatterStyle timeStyle) {
    const bool hasStyle =
        dateStyle != ZRMDateFormatterStyle::None || timeStyle != ZRMDateFormatterStyle::None;
    if (!hasStyle || !std::isfinite(date.secondsSince1970)) {
        return {};
    }
    const auto identifier = locale.value_or(source.localeIdentifier());
    const auto format = ZRMIcuDateFormat::withStyles(icuStyle(dateStyle), icuStyle(timeStyle),
                                                     source.timeZoneIdentifier(), identifier);
    return format ? format->textFromMilliseconds(date.secondsSince1970 * 1e3) : std::string();
}

std::string zrm_localDescriptionWithDateStyle(const ZRMLocaleSource& source, ZRMDate date,
                                              ZRMDateFormatterStyle dateStyle,
                                              ZRMDateFormatterStyle timeStyle) {
    return zrm_descriptionWithLocale(source, date, std::nullopt, dateStyle, timeStyle);
}

std::string zrm_mediumLocalDescriptionForDate(const ZRMLocaleSource& source, ZRMDate date) {
    return zrm_localDescriptionWithDateStyle(source, date, ZRMDateFormatterStyle::Medium,
                                             ZRMDateFormatterStyle::None);
}
