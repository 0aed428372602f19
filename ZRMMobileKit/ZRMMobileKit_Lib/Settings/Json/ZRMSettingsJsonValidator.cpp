#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMSettingsJsonValidator.h"

#include <boost/json/serialize.hpp>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDate/NSDate+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Url/ZRMUrl.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileKitErrorFactory.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMSettingsTable.h"

namespace {

// A text that is no URL at all passes: whoever builds settings from it refuses it by its key.
bool isNoUrlOrHttp(std::string_view text) {
    const auto url = ZRMUrl::fromText(text);
    return !url || url->scheme().value_or("").starts_with("http");
}

bool keepsRule(ZRMSettingsRule rule, const ZRMJsonValue& value) {
    const auto* const string = value.if_string();
    if (string == nullptr) {
        return false;
    }
    const std::string_view text(string->data(), string->size());
    if (rule == ZRMSettingsRule::HttpUrl) {
        return isNoUrlOrHttp(text);
    }
    if (rule == ZRMSettingsRule::ISO8601Duration) {
        return zrm_timeIntervalFromISO8601DurationString(text) != kZRMUnknownTimeInterval;
    }
    return rule == ZRMSettingsRule::NonEmptyText && !text.empty();
}

// Calls back with each entry that the table knows and may take, and whether it keeps its rule.
template <class Visit>
void examine(const ZRMDictionary& json, const Visit& visit) {
    for (const auto& field : zrm_settingsTable()) {
        const auto* const value = json.if_contains(field.key);
        if (value != nullptr && field.rule != ZRMSettingsRule::NeverTaken) {
            visit(field.key, *value, keepsRule(field.rule, *value));
        }
    }
}

std::string joined(const std::vector<std::string>& keys) {
    std::string text;
    for (const auto& key : keys) {
        text.append(text.empty() ? "" : ",").append(key);
    }
    return text;
}

}  // namespace

ZRMDictionary ZRMSettingsJsonValidator::validSettingsJsonFromJson(const ZRMDictionary& json) {
    ZRMDictionary valid;
    examine(json, [&valid](const char* key, const ZRMJsonValue& value, bool isValid) {
        if (isValid) {
            valid[key] = value;
        }
    });
    return valid;
}

ZRMDictionary ZRMSettingsJsonValidator::validSettingsJsonFromJson(const ZRMDictionary& json,
                                                                  std::optional<ZRMError>& error) {
    const auto keys = rejectedKeys(json);
    if (!keys.empty()) {
        const ZRMJsonValue text(boost::json::serialize(json));
        error = ZRMMobileKitErrorFactory::settingsInvalidFormatErrorForField(joined(keys), &text);
    }
    return validSettingsJsonFromJson(json);
}

std::vector<std::string> ZRMSettingsJsonValidator::rejectedKeys(const ZRMDictionary& json) {
    std::vector<std::string> keys;
    examine(json, [&keys](const char* key, const ZRMJsonValue& /*value*/, bool isValid) {
        if (!isValid) {
            keys.emplace_back(key);
        }
    });
    return keys;
}
