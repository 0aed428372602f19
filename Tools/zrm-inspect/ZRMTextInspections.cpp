#include "Tools/zrm-inspect/ZRMTextInspections.h"

#include <cstdint>
#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDate/NSDate+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDateComponents/NSDateComponents+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDateFormatter/NSDateFormatter+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSURL/NSURL+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"

namespace {

ZRMDictionary reportOf(const ZRMDateComponents& components) {
    const std::pair<const char*, std::int64_t> fields[] = {
        {"year", components.year},    {"month", components.month}, {"week", components.weekOfYear},
        {"day", components.day},      {"hour", components.hour},   {"minute", components.minute},
        {"second", components.second}};
    ZRMDictionary report;
    for (const auto& [name, value] : fields) {
        if (value != kZRMUndefinedDateComponent) {
            report[name] = value;
        }
    }
    return report;
}

}  // namespace

ZRMInspection zrm_inspectDuration(const std::string& text) {
    const auto components = zrm_dateComponentsFromISO8601DurationString(text);
    ZRMDictionary report;
    report["seconds"] = static_cast<std::int64_t>(zrm_timeIntervalFromISO8601DurationString(text));
    report["components"] = components ? ZRMJsonValue(reportOf(*components)) : ZRMJsonValue(nullptr);
    return {report, components.has_value()};
}

ZRMInspection zrm_inspectServerDate(const std::string& text) {
    const auto date = zrm_serverTimeFormatter()->dateFromString(text);
    ZRMDictionary report;
    report["seconds"] = date ? ZRMJsonValue(static_cast<std::int64_t>(date->secondsSince1970))
                             : ZRMJsonValue(nullptr);
    return {report, date.has_value()};
}

ZRMInspection zrm_inspectHttpUrl(const std::string& text) {
    const auto url = ZRMUrl::fromText(text);
    const bool isValid = url && zrm_isValidHttpUrl(*url);
    return {{{"valid", isValid}}, isValid};
}

ZRMInspection zrm_inspectBase64UrlEncode(const std::string& text) {
    return {{{"text", zrm_base64UrlFromBase64String(zrm_base64String(zrm_dataFromText(text)))}},
            true};
}

ZRMInspection zrm_inspectBase64UrlDecode(const std::string& text) {
    const auto bytes = zrm_dataFromBase64String(zrm_base64FromBase64UrlString(text));
    ZRMDictionary report{{"text", nullptr}, {"hex", nullptr}};
    if (bytes) {
        const auto decoded = zrm_textFromData(*bytes);
        if (zrm_isValidUtf8(decoded)) {
            report["text"] = decoded;
        }
        report["hex"] = zrm_hexString(*bytes);
    }
    return {report, bytes.has_value()};
}
