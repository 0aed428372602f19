#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMIcuDateFormat.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMUtf16.h"

namespace {

std::int32_t lengthOf(std::u16string_view text) {
    return static_cast<std::int32_t>(text.size());
}

// Null where ICU refuses what it is told, or is absent. The pattern counts with UDAT_PATTERN alone.
UDateFormat* openFormat(UDateFormatStyle dateStyle, UDateFormatStyle timeStyle,
                        std::u16string_view timeZone, const std::string& locale,
                        std::u16string_view pattern = {}) {
    const auto* const icu = ZRMIcu::shared();
    if (icu == nullptr) {
        return nullptr;
    }
    UErrorCode status = U_ZERO_ERROR;
    UDateFormat* const format =
        icu->udat_open(timeStyle, dateStyle, locale.c_str(), timeZone.data(), lengthOf(timeZone),
                       pattern.data(), lengthOf(pattern), &status);
    return U_SUCCESS(status) ? format : nullptr;
}

// False where there is no such calendar.
bool useGregorianCalendar(UDateFormat* format, std::u16string_view timeZone,
                          const std::string& locale) {
    const auto& icu = *ZRMIcu::shared();
    UErrorCode status = U_ZERO_ERROR;
    UCalendar* const calendar =
        icu.ucal_open(timeZone.data(), lengthOf(timeZone), locale.c_str(), UCAL_GREGORIAN, &status);
    if (U_FAILURE(status)) {
        return false;
    }
    icu.udat_setCalendar(format, calendar);
    icu.ucal_close(calendar);
    return true;
}

}  // namespace

std::unique_ptr<ZRMIcuDateFormat> ZRMIcuDateFormat::withPattern(std::string_view pattern,
                                                                std::string_view timeZone,
                                                                const std::string& locale) {
    const auto zone = zrm_utf16FromUtf8(timeZone);
    Format format(openFormat(UDAT_PATTERN, UDAT_PATTERN, zone, locale, zrm_utf16FromUtf8(pattern)));
    if (!format || !useGregorianCalendar(format.get(), zone, locale)) {
        return nullptr;
    }
    ZRMIcu::shared()->udat_setLenient(format.get(), 0);
    return std::unique_ptr<ZRMIcuDateFormat>(new ZRMIcuDateFormat(std::move(format)));
}

std::unique_ptr<ZRMIcuDateFormat> ZRMIcuDateFormat::withStyles(UDateFormatStyle dateStyle,
                                                               UDateFormatStyle timeStyle,
                                                               std::string_view timeZone,
                                                               const std::string& locale) {
    Format format(openFormat(dateStyle, timeStyle, zrm_utf16FromUtf8(timeZone), locale));
    return format ? std::unique_ptr<ZRMIcuDateFormat>(new ZRMIcuDateFormat(std::move(format)))
                  : nullptr;
}

std::string ZRMIcuDateFormat::textFromMilliseconds(double milliseconds) const {
    constexpr std::size_t kUsualLength = 64;
    return zrm_utf8FromUtf16(
        zrm_icuText(kUsualLength, [&](UChar* buffer, std::int32_t capacity, UErrorCode* status) {
            return ZRMIcu::shared()->udat_format(format_.get(), milliseconds, buffer, capacity,
                                                 nullptr, status);
        }));
}

std::optional<double> ZRMIcuDateFormat::millisecondsFromText(std::string_view text) const {
    const auto units = zrm_utf16FromUtf8(text);
    UErrorCode status = U_ZERO_ERROR;
    std::int32_t end = 0;
    const double milliseconds =
        ZRMIcu::shared()->udat_parse(format_.get(), units.data(), lengthOf(units), &end, &status);
    const bool isWhole = U_SUCCESS(status) && end > 0 && end == lengthOf(units);
    return isWhole ? std::optional(milliseconds) : std::nullopt;
}
