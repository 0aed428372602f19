#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDateFormatter/NSDateFormatter+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMHttpDate.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

namespace {

// One type each, because shared instances are told apart by their type.
struct Iso8601DateTimeFormatter : ZRMDateFormatter {
    using ZRMDateFormatter::ZRMDateFormatter;
};
struct ServerTimeFormatter : ZRMDateFormatter {
    using ZRMDateFormatter::ZRMDateFormatter;
};

template <class Formatter>
std::shared_ptr<const ZRMDateFormatter> sharedFormatter(std::string_view pattern) {
    const auto platform = ZRMPlatform::current();
    return platform->instances->shared<Formatter>([&] {
        return std::make_shared<Formatter>(pattern, platform->locale->timeZoneIdentifier(),
                                           kZRMPosixLocaleIdentifier);
    });
}

}  // namespace

std::shared_ptr<const ZRMDateFormatter> zrm_iso8601DateTimeFormatter() {
    return sharedFormatter<Iso8601DateTimeFormatter>("yyyyMMdd'T'HHmmss");
}

std::shared_ptr<const ZRMDateFormatter> zrm_serverTimeFormatter() {
    return sharedFormatter<ServerTimeFormatter>(kZRMHttpDatePattern);
}
