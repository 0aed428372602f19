#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLogMessage.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"

namespace {

// "yyyy-MM-dd HH:mm:ss +0000". A clock far off stays within the years 0 to 9999.
std::string dateDescription(ZRMDate date) {
    constexpr double kYear0 = -62167219200.0;
    constexpr double kEndOfYear9999 = 253402300799.0;
    const double bounded = std::isnan(date.secondsSince1970)
                               ? 0.0
                               : std::clamp(date.secondsSince1970, kYear0, kEndOfYear9999);
    const std::chrono::sys_seconds moment{
        std::chrono::seconds{static_cast<std::int64_t>(std::floor(bounded))}};
    const auto day = std::chrono::floor<std::chrono::days>(moment);
    const std::chrono::year_month_day calendar{day};
    const std::chrono::hh_mm_ss time{moment - day};

    std::array<char, 64> text{};
    const int length = std::snprintf(
        text.data(), text.size(), "%04d-%02u-%02u %02d:%02d:%02d +0000",
        static_cast<int>(calendar.year()), static_cast<unsigned>(calendar.month()),
        static_cast<unsigned>(calendar.day()), static_cast<int>(time.hours().count()),
        static_cast<int>(time.minutes().count()), static_cast<int>(time.seconds().count()));
    return {text.data(), static_cast<std::size_t>(length)};
}

}  // namespace

std::string ZRMLogMessage::logForMessage(const ZRMClock& clock, ZRMExecutor& executor,
                                         const std::string& message, ZRMLogLevel level) {
    std::string line = "[" + dateDescription(clock.now()) + "] [" +
                       std::to_string(executor.currentThreadIdentifier());
    line.append(executor.mainQueue()->isCurrent() ? ":main" : "");
    line.append("] [").append(zrm_stringForLogLevel(level)).append("] ");
    line.append(message).append("\n");
    return line;
}
