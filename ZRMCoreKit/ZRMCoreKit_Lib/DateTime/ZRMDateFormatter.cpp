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

// ICU's formatters keep state while they work; the mutex guards it. Making one reads much of ICU's
// data, so it is made when something is first asked of it.
class ZRMDateFormatter::IcuFormat {
  public:
    IcuFormat(std::string_view pattern, std::string_view timeZone, std::string_view locale)
        : pattern_(pattern), timeZone_(timeZone), locale_(locale) {}

    std::string stringFromMilliseconds(double milliseconds) {
        icu::UnicodeString text;
        {
            const ZRMLockGuard lock(mutex_);
            if (auto* const format = made()) {
                format->format(milliseconds, text);
            }
        }
        std::string utf8;
        text.toUTF8String(utf8);
        return utf8;
    }

    std::optional<ZRMDate> dateFromString(std::string_view text) {
        const auto unicode = zrm_unicodeString(text);
        icu::ParsePosition position(0);
        UDate milliseconds = 0;
        {
            const ZRMLockGuard lock(mutex_);
            if (auto* const format = made()) {
                milliseconds = format->parse(unicode, position);
            }
        }
        const bool isWhole = position.getErrorIndex() < 0 && position.getIndex() > 0 &&
                             position.getIndex() == unicode.length();
        return isWhole ? std::optional(ZRMDate{milliseconds / 1e3}) : std::nullopt;
    }

  private:
    using Format = std::unique_ptr<icu::SimpleDateFormat>;

    // Null without ICU's data: dates are then neither written nor read.
    icu::SimpleDateFormat* made() ZRM_REQUIRES(mutex_) {
        if (!format_) {
            format_ = make();
        }
        return format_->get();
    }

    [[nodiscard]] Format make() const {
        UErrorCode status = U_ZERO_ERROR;
        const icu::Locale icuLocale(locale_.c_str());
        auto format =
            std::make_unique<icu::SimpleDateFormat>(zrm_unicodeString(pattern_), icuLocale, status);
        auto calendar = std::make_unique<icu::GregorianCalendar>(
            icu::TimeZone::createTimeZone(zrm_unicodeString(timeZone_)), icuLocale, status);
        if (U_FAILURE(status)) {
            return nullptr;
        }
        format->adoptCalendar(calendar.release());
        format->setLenient(false);
        return format;
    }

    const std::string pattern_;
    const std::string timeZone_;
    const std::string locale_;
    ZRMMutex mutex_;
    std::optional<Format> format_ ZRM_GUARDED_BY(mutex_);  // absent until it was needed
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
