// Durations: what reads is bounded, and what the writer writes reads back as the same seconds.
#include <algorithm>
#include <cmath>
#include <limits>

#include "Fuzz/ZRMFuzz.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDate/NSDate+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDateComponents/NSDateComponents+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+Json.h"

namespace {

bool isBounded(std::int64_t field) {
    return field == kZRMUndefinedDateComponent ||
           (field >= std::numeric_limits<std::int32_t>::min() &&
            field <= std::numeric_limits<std::int32_t>::max());
}

void checkComponents(std::string_view text, const ZRMDateComponents& components) {
    ZRM_FUZZ_ASSERT(text.starts_with('P'));
    for (const auto field :
         {components.year, components.month, components.weekOfYear, components.day, components.hour,
          components.minute, components.second}) {
        ZRM_FUZZ_ASSERT(isBounded(field));
    }
    const bool hasTime = text.find('T') != std::string_view::npos;
    ZRM_FUZZ_ASSERT(!hasTime || components.weekOfYear == kZRMUndefinedDateComponent);
}

void checkSeconds(double seconds) {
    const auto text = timeIntervalAsISO8601DurationString(seconds);
    ZRM_FUZZ_ASSERT(text.starts_with('P'));
    // More days than 32 bits hold saturate on reading.
    if (seconds >= 1 && seconds < 2147483647.0 * 86400) {
        ZRM_FUZZ_ASSERT(zrm_timeIntervalFromISO8601DurationString(text) == std::trunc(seconds));
    } else if (seconds < 1) {
        ZRM_FUZZ_ASSERT(text == "P" || text == "PT");
    }
}

}  // namespace

void zrm_fuzz(std::span<const std::uint8_t> input) {
    const auto text = zrm_textOfInput(input);
    const auto components = zrm_dateComponentsFromISO8601DurationString(text);
    const auto seconds = zrm_timeIntervalFromISO8601DurationString(text);
    ZRM_FUZZ_ASSERT(std::isfinite(seconds) && seconds == std::trunc(seconds));
    if (components) {
        checkComponents(text, *components);
    } else {
        ZRM_FUZZ_ASSERT(seconds == -1);
    }
    checkSeconds(seconds);
    if (input.size() >= sizeof(double)) {
        double any = 0;
        std::copy_n(input.data(), sizeof(any), reinterpret_cast<std::uint8_t*>(&any));
        checkSeconds(any);
    }
}
