// One date formatter of ICU.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMIcu.h"

// Keeps state while it works: used by one thread at a time. Milliseconds are since 1970.
class ZRMIcuDateFormat {
  public:
    // Both are null where ICU refuses what it is told, or is absent. The time zone is an IANA name
    // (an unknown one counts as GMT), the locale an ICU identifier.
    //
    // Gregorian calendar; reads nothing that the pattern does not say.
    static std::unique_ptr<ZRMIcuDateFormat> withPattern(std::string_view pattern,
                                                         std::string_view timeZone,
                                                         const std::string& locale);
    // As the locale writes dates, in its calendar.
    static std::unique_ptr<ZRMIcuDateFormat> withStyles(UDateFormatStyle dateStyle,
                                                        UDateFormatStyle timeStyle,
                                                        std::string_view timeZone,
                                                        const std::string& locale);

    [[nodiscard]] std::string textFromMilliseconds(double milliseconds) const;
    // Absent unless the whole text is a date.
    [[nodiscard]] std::optional<double> millisecondsFromText(std::string_view text) const;

  private:
    struct Close {
        void operator()(UDateFormat* format) const { ZRMIcu::shared()->udat_close(format); }
    };
    using Format = std::unique_ptr<UDateFormat, Close>;

    explicit ZRMIcuDateFormat(Format format) : format_(std::move(format)) {}

    Format format_;
};
