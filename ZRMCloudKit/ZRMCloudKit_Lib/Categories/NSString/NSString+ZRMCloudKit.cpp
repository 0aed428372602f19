#include "ZRMCloudKit/ZRMCloudKit_Lib/Categories/NSString/NSString+ZRMCloudKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMDateFormatter.h"

std::optional<std::string> zrm_stringFromDate(const std::optional<ZRMDate>& date) {
    // Never destroyed, so that events may still be written while the process exits.
    static const auto& formatter =
        *new ZRMDateFormatter("yyyy-MM-dd HH:mm:ss.SSSSSS", "UTC", kZRMPosixLocaleIdentifier);
    auto text = date ? formatter.stringFromDate(*date) : std::string();
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}
