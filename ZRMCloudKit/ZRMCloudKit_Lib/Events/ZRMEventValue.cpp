#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMEventValue.h"

#include <cmath>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Categories/NSString/NSString+ZRMCloudKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"

namespace {

ZRMJsonValue repaired(const ZRMJsonValue& value) {
    if (const auto* text = value.if_string()) {
        return ZRMJsonValue(zrm_repairedUtf8(*text));
    }
    if (const auto* dictionary = value.if_object()) {
        return zrm_repairedJson(*dictionary);
    }
    if (const auto* array = value.if_array()) {
        ZRMJsonArray result;
        for (const auto& element : *array) {
            result.push_back(repaired(element));
        }
        return result;
    }
    return value;
}

}  // namespace

ZRMDictionary zrm_repairedJson(const ZRMDictionary& dictionary) {
    ZRMDictionary result;
    for (const auto& [key, value] : dictionary) {
        result.insert_or_assign(zrm_repairedUtf8(key), repaired(value));
    }
    return result;
}

std::optional<ZRMJsonValue> zrm_eventValue(const std::string& text) {
    return zrm_isValidUtf8(text) ? ZRMJsonValue(text) : ZRMJsonValue(zrm_repairedUtf8(text));
}

std::optional<ZRMJsonValue> zrm_eventValue(double number) {
    return std::isfinite(number) ? std::optional<ZRMJsonValue>(number) : std::nullopt;
}

std::optional<ZRMJsonValue> zrm_eventValue(const ZRMDate& date) {
    return zrm_eventValue(zrm_stringFromDate(date));
}

std::optional<ZRMJsonValue> zrm_eventValue(const ZRMDictionary& dictionary) {
    return ZRMJsonValue(zrm_repairedJson(dictionary));
}
