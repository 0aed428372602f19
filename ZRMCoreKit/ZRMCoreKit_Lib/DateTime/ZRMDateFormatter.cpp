#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMDateFormatter.h"

#include <cmath>

#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMHttpDate.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMIcuDateFormat.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"
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

// Making a formatter of ICU reads much of ICU's data, so it is made when something is first asked
// of it. The mutex guards it.
class ZRMDateFormatter::IcuFormat {
  public:
    IcuFormat(std::string_view pattern, std::string_view timeZone, std::string_view locale)
        : pattern_(pattern), timeZone_(timeZone), locale_(locale) {}

    std::string stringFromMilliseconds(double milliseconds) {
        const ZRMLockGuard lock(mutex_);
        const auto* const format = made();
        return format != nullptr ? format->textFromMilliseconds(milliseconds) : std::string();
    }

    std::optional<ZRMDate> dateFromString(std::string_view text) {
        const ZRMLockGuard lock(mutex_);
        const auto* const format = made();
        const auto milliseconds =
            format != nullptr ? format->millisecondsFromText(text) : std::nullopt;
        return milliseconds ? std::optional(ZRMDate{*milliseconds / 1e3}) : std::nullopt;
    }

  private:
    // Null without ICU or its data: dates are then neither written nor read.
    const ZRMIcuDateFormat* made() ZRM_REQUIRES(mutex_) {
        if (!format_) {
            format_ = ZRMIcuDateFormat::withPattern(pattern_, timeZone_, locale_);
        }
        return format_->get();
    }

    const std::string pattern_;
    const std::string timeZone_;
    const std::string locale_;
    ZRMMutex mutex_;
    // Absent until it was needed.
    std::optional<std::unique_ptr<ZRMIcuDateFormat>> format_ ZRM_GUARDED_BY(mutex_);
};

ZRMDateFormatter::ZRMDateFormatter(std::string_view pattern, std::string_view timeZone,
                                   std::string_view locale)
    : readsHttpDates_(pattern == kZRMHttpDatePattern && locale == kZRMPosixLocaleIdentifier),
      icu_(std::make_unique<IcuFormat>(pattern, timeZone, locale)) {
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
    if (readsHttpDates_) {
        if (const auto date = zrm_dateFromHttpDate(text)) {
            return date;
        }
    }
    if (!zrm_isValidUtf8(text)) {
        return std::nullopt;
    }
    return icu_->dateFromString(text);
}
