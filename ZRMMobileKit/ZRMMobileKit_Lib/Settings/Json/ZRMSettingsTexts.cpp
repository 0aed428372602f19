#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMSettingsTexts.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDate/NSDate+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+Json.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Url/ZRMUrl.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMMobileServiceSettings.h"

bool zrm_hasSettingsText(const ZRMDictionary& document, const char* key) {
    const auto* const text = document.if_contains(key);
    return text != nullptr && text->is_string() && !text->get_string().empty();
}

std::string zrm_settingsText(const ZRMDictionary& document, const char* key) {
    if (!zrm_hasSettingsText(document, key)) {
        throw ZRMMobileServiceSettings::makeExceptionForKey(key);
    }
    return std::string(document.at(key).get_string());
}

std::string zrm_settingsUrl(const ZRMDictionary& document, const char* key) {
    auto text = zrm_settingsText(document, key);
    if (!ZRMUrl::fromText(text)) {
        throw ZRMMobileServiceSettings::makeExceptionForKey(key);
    }
    return text;
}

double zrm_settingsDuration(const ZRMDictionary& document, const char* key) {
    return zrm_timeIntervalFromISO8601DurationString(zrm_settingsText(document, key));
}

bool zrm_settingsBoolean(const ZRMDictionary& document, const char* key) {
    const auto text = zrm_lowercasedText(zrm_settingsText(document, key));
    return text != "false" && text != "0";
}

std::uint64_t zrm_settingsCount(const ZRMDictionary& document, const char* key) {
    const auto text = zrm_settingsText(document, key);
    const auto begin = std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size());
    const auto* first = text.data() + begin;
    const auto* const last = text.data() + text.size();
    if (first != last && *first == '+') {
        ++first;
    }
    std::int64_t number = 0;
    const auto result = std::from_chars(first, last, number);
    if (result.ec == std::errc::result_out_of_range) {
        return *first == '-' ? 0 : std::numeric_limits<std::int64_t>::max();
    }
    return static_cast<std::uint64_t>(std::max<std::int64_t>(number, 0));
}

std::string zrm_settingsTextOfDuration(double seconds) {
    return timeIntervalAsISO8601DurationString(seconds);
}
