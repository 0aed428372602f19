#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMDateFormatter.h"

#include <cmath>

#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMUnicodeString.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

namespace {

constexpr double kFarthestMilliseconds = 1.6e17;  // about 5 million years

// A tenth of a microsecond is noise of the double that carries the date.
double wholeMilliseconds(ZRMDate date) {
    return std::floor(std::round(date.secondsSince1970 * 1e6) / 1e3);
}

bool isUtc(std::string_view timeZone) {
    return timeZone == "UTC" || timeZone == "GMT" || timeZone == "Etc/UTC";
}

}  // namespace

// ICU's formatters keep state while they work; the mutex guards it.
class ZRMDateFormatter::IcuFormat {
  public:
    IcuFormat(std::string_view pattern, std::string_view timeZone, std::string_view locale) {
        UErrorCode status = U_ZERO_ERROR;
        const icu::Locale icuLocale(std::string(locale).c_str());
        auto format =
            std::make_unique<icu::SimpleDateFormat>(zrm_unicodeString(pattern), icuLocale, status);
        auto calendar = std::make_unique<icu::GregorianCalendar>(
            icu::TimeZone::createTimeZone(zrm_unicodeString(timeZone)), icuLocale, status);
        // Only without ICU's data is there none; dates are then neither written nor read.
        if (U_SUCCESS(status)) {
            format->adoptCalendar(calendar.release());
            format->setLenient(false);
            format_ = std::move(format);
        }
    }

    std::string stringFromMilliseconds(double milliseconds) {
        icu::UnicodeString text;
        if (format_) {
            const ZRMLockGuard lock(mutex_);
            format_->format(milliseconds, text);
        }
        std::string utf8;
        text.toUTF8String(utf8);
        return utf8;
    }

    std::optional<ZRMDate> dateFromString(std::string_view text) {
        const auto unicode = zrm_unicodeString(text);
        icu::ParsePosition position(0);
        UDate milliseconds = 0;
        if (format_) {
            const ZRMLockGuard lock(mutex_);
            milliseconds = format_->parse(unicode, position);
        }
        const bool isWhole = position.getErrorIndex() < 0 && position.getIndex() > 0 &&
                             position.getIndex() == unicode.length();
        return isWhole ? std::optional(ZRMDate{milliseconds / 1e3}) : std::nullopt;
    }

  private:
    ZRMMutex mutex_;
    std::unique_ptr<icu::SimpleDateFormat> format_
        ZRM_PT_GUARDED_BY(mutex_);  // absent when ICU refused
};

ZRMDateFormatter::ZRMDateFormatter(std::string_view pattern, std::string_view timeZone,
                                   std::string_view locale)
    : icu_(std::make_unique<IcuFormat>(pattern, timeZone, locale)) {
    if (isUtc(timeZone) && locale == kZRMPosixLocaleIdentifier) {
        numeric_ = ZRMNumericDatePattern::fromPattern(pattern);
    }
}

ZRMDateFormatter::~ZRMDateFormatter() = default;

std::string ZRMDateFormatter::stringFromDate(ZRMDate date) const {
    const auto milliseconds = wholeMilliseconds(date);
    if (!(std::abs(milliseconds) <= kFarthestMilliseconds)) {
        return {};
    }
    if (numeric_) {
        if (auto text = numeric_->text(static_cast<std::int64_t>(milliseconds))) {
            return std::move(*text);
        }
    }
    return icu_->stringFromMilliseconds(milliseconds);
}

std::optional<ZRMDate> ZRMDateFormatter::dateFromString(std::string_view text) const {
    if (!zrm_isValidUtf8(text)) {
        return std::nullopt;
    }
    return icu_->dateFromString(text);
}
