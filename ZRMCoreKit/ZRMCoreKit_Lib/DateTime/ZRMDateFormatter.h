// Dates to text and back by a pattern (Unicode technical standard 35) in a time zone and locale.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMNumericDatePattern.h"
#include "ZRMPlatform/Ports/Values/ZRMDate.h"

// The locale of machine-read dates: it never changes and writes ASCII digits.
inline constexpr const char* kZRMPosixLocaleIdentifier = "en_US_POSIX";

// Gregorian calendar. Immutable to its users and safe from any thread; calls never run other code
// of the library. Purely numeric patterns in UTC and the POSIX locale are written without a lock,
// which makes the dates of events cheap, and the dates that servers write are read without one;
// everything else goes through one formatter of ICU under a lock.
class ZRMDateFormatter {
  public:
    // The time zone is an IANA name (an unknown one counts as GMT), the locale an ICU identifier. A
    // pattern that ICU refuses makes a formatter that writes empty texts and reads nothing.
    ZRMDateFormatter(std::string_view pattern, std::string_view timeZone, std::string_view locale);
    ~ZRMDateFormatter();
    ZRMDateFormatter(const ZRMDateFormatter&) = delete;
    ZRMDateFormatter& operator=(const ZRMDateFormatter&) = delete;

    // The date is rounded to microseconds and cut to milliseconds, the finest unit there is. Empty
    // for a date that is not finite or more than 5 million years away.
    [[nodiscard]] std::string stringFromDate(ZRMDate date) const;

    // Absent unless the whole text reads as the pattern says, numbers with at least as many digits
    // as the field has letters, and names an existing date.
    [[nodiscard]] std::optional<ZRMDate> dateFromString(std::string_view text) const;

  private:
    class IcuFormat;
    std::optional<ZRMNumericDatePattern> numeric_;  // where the fast way of writing is open
    bool readsHttpDates_ = false;
    std::unique_ptr<IcuFormat> icu_;
};
