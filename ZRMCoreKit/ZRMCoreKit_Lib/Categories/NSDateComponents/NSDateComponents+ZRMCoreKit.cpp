#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSCharacterSet/NSCharacterSet+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDateComponents/NSDateComponents+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMScanner.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"

namespace {

ZRMCalendarUnit unsupportedUnit([[maybe_unused]] const char* message) {
#ifndef NDEBUG
    throw ZRMAssertionFailure(message);
#else
    return ZRMCalendarUnit::Unsupported;
#endif
}

// The field that the unit of a designator names; no designator's unit is unsupported.
std::int64_t& fieldForUnit(ZRMDateComponents& components, ZRMCalendarUnit unit) {
    switch (unit) {
        case ZRMCalendarUnit::Year:
            return components.year;
        case ZRMCalendarUnit::Month:
            return components.month;
        case ZRMCalendarUnit::WeekOfYear:
            return components.weekOfYear;
        case ZRMCalendarUnit::Day:
            return components.day;
        case ZRMCalendarUnit::Hour:
            return components.hour;
        case ZRMCalendarUnit::Minute:
            return components.minute;
        default:
            return components.second;
    }
}

}  // namespace

ZRMCalendarUnit zrm_dateCalendarUnitForString(std::string_view letter) {
    if (letter == "Y") {
        return ZRMCalendarUnit::Year;
    }
    if (letter == "M") {
        return ZRMCalendarUnit::Month;
    }
    if (letter == "W") {
        return ZRMCalendarUnit::WeekOfYear;
    }
    if (letter == "D") {
        return ZRMCalendarUnit::Day;
    }
    return unsupportedUnit("Unsupported string for date calendar unit");
}

ZRMCalendarUnit zrm_timeCalendarUnitForString(std::string_view letter) {
    if (letter == "H") {
        return ZRMCalendarUnit::Hour;
    }
    if (letter == "M") {
        return ZRMCalendarUnit::Minute;
    }
    if (letter == "S") {
        return ZRMCalendarUnit::Second;
    }
    return unsupportedUnit("Unsupported string for time calendar unit");
}

std::optional<ZRMDateComponents> zrm_dateComponentsForISO8601DurationString(
    std::string_view part, ZRMDurationPart durationPart) {
    if (part.empty()) {
        return std::nullopt;
    }
    const bool isDate = durationPart == ZRMDurationPart::Date;
    const auto designators =
        isDate ? zrm_ISO8601DurationDateCharacters() : zrm_ISO8601DurationTimeCharacters();
    ZRMDateComponents components;
    ZRMScanner scanner(part);
    while (!scanner.isAtEnd()) {
        const auto number = scanner.scanInt();
        if (!number) {
            return std::nullopt;
        }
        const auto run = scanner.scanCharactersFromSet(designators);
        if (run.size() != 1) {
            return std::nullopt;
        }
        fieldForUnit(components, isDate ? zrm_dateCalendarUnitForString(run)
                                        : zrm_timeCalendarUnitForString(run)) = *number;
    }
    return components;
}

std::optional<ZRMDateComponents> zrm_dateComponentsFromISO8601DurationString(
    std::string_view duration) {
    if (!duration.starts_with('P')) {
        return std::nullopt;
    }
    const auto separator = duration.find('T');
    const auto date = zrm_dateComponentsForISO8601DurationString(
        duration.substr(0, separator).substr(1), ZRMDurationPart::Date);
    if (separator == std::string_view::npos) {
        return date;
    }
    const auto timePart = duration.substr(separator + 1);
    if (timePart.find('T') != std::string_view::npos) {
        return std::nullopt;
    }
    const auto time = zrm_dateComponentsForISO8601DurationString(timePart, ZRMDurationPart::Time);
    if (!date && !time) {
        return std::nullopt;
    }
    ZRMDateComponents components;
    if (date) {
        components.year = date->year;
        components.month = date->month;
        components.day = date->day;
    }
    if (time) {
        components.hour = time->hour;
        components.minute = time->minute;
        components.second = time->second;
    }
    return components;
}
