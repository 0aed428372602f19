#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDate/NSDate+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+Json.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Numbers/ZRMNumbers.h"

namespace {

void appendIfPositive(std::string& text, std::int64_t count, char designator) {
    if (count > 0) {
        text.append(std::to_string(count)).push_back(designator);
    }
}

}  // namespace

std::string timeIntervalAsISO8601DurationString(double seconds) {
    const auto whole = zrm_int64FromDouble(seconds);
    const auto hours = whole / zrm_secondsPerHour() % 24;
    const auto minutes = whole / zrm_secondsPerMinute() % 60;
    const auto rest = whole % zrm_secondsPerMinute();

    std::string text = "P";
    appendIfPositive(text, whole / zrm_secondsPerDay(), 'D');
    if (hours == 0 && minutes == 0 && rest == 0) {
        return text;
    }
    text.push_back('T');
    appendIfPositive(text, hours, 'H');
    appendIfPositive(text, minutes, 'M');
    appendIfPositive(text, rest, 'S');
    return text;
}
