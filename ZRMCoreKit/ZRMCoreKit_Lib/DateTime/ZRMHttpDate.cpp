#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMHttpDate.h"

#include <chrono>
#include <cstddef>

namespace {

constexpr std::string_view kShape = "___, 00 ___ 0000 00:00:00 GMT";
constexpr std::size_t kNameLength = 3;
constexpr std::string_view kDays = "SunMonTueWedThuFriSat";
constexpr std::string_view kMonths = "JanFebMarAprMayJunJulAugSepOctNovDec";

bool hasShape(std::string_view text) {
    if (text.size() != kShape.size()) {
        return false;
    }
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool isDigit = text[at] >= '0' && text[at] <= '9';
        if (kShape[at] != '_' && (kShape[at] == '0' ? !isDigit : text[at] != kShape[at])) {
            return false;
        }
    }
    return true;
}

// From 0.
std::optional<unsigned> placeOf(std::string_view name, std::string_view names) {
    for (unsigned place = 0; place * kNameLength < names.size(); ++place) {
        if (names.substr(place * kNameLength, kNameLength) == name) {
            return place;
        }
    }
    return std::nullopt;
}

unsigned number(std::string_view digits) {
    unsigned value = 0;
    for (const auto digit : digits) {
        value = value * 10 + static_cast<unsigned>(digit - '0');
    }
    return value;
}

}  // namespace

std::optional<ZRMDate> zrm_dateFromHttpDate(std::string_view text) {
    constexpr unsigned kFirstGregorianYear = 1583;
    if (!hasShape(text)) {
        return std::nullopt;
    }
    const auto weekday = placeOf(text.substr(0, kNameLength), kDays);
    const auto month = placeOf(text.substr(8, kNameLength), kMonths);
    const auto year = number(text.substr(12, 4));
    const auto hour = number(text.substr(17, 2));
    const auto minute = number(text.substr(20, 2));
    const auto second = number(text.substr(23, 2));
    if (!weekday || !month || year < kFirstGregorianYear || hour > 23 || minute > 59 ||
        second > 59) {
        return std::nullopt;
    }
    const auto date = std::chrono::year(static_cast<int>(year)) / std::chrono::month(*month + 1) /
                      std::chrono::day(number(text.substr(5, 2)));
    if (!date.ok() || std::chrono::weekday(date) != std::chrono::weekday(*weekday)) {
        return std::nullopt;
    }
    const auto moment = std::chrono::sys_days(date) + std::chrono::hours(hour) +
                        std::chrono::minutes(minute) + std::chrono::seconds(second);
    return ZRMDate{static_cast<double>(moment.time_since_epoch().count())};
}
