#include "Tools/zrm-inspect/ZRMSettingsInspection.h"

#include "Tools/zrm-inspect/ZRMJwsInspection.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsErrorFactory.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsKeys.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsObject.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMSettingsJsonValidator.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Provider/ZRMSettingsProvider.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMSettingsKeys.h"

namespace {

bool isSigned(const ZRMDictionary& object) {
    return object.contains(kZRMJwsPayloadKey) || object.contains(kZRMJwsSignaturesKey);
}

ZRMResult<ZRMDictionary> configOf(const ZRMData& bytes) {
    const auto object = ZRMSettingsProvider::jsonObjectFromData(bytes);
    if (!object) {
        return object.error();
    }
    if (!isSigned(object.value())) {
        const auto* const config = object.value().if_contains(kZRMSettingsConfigKey);
        return config != nullptr && config->is_object() ? config->get_object() : object.value();
    }
    const auto jwsObject = ZRMJwsObject::jwsObjectFromData(bytes);
    if (!jwsObject) {
        return jwsObject.error();
    }
    if (jwsObject.value().signatures().empty()) {
        return ZRMJwsErrorFactory::errorForCode(ZRMJwsErrorSignatureNotFound);
    }
    return ZRMSettingsProvider::configFromJwsObject(jwsObject.value());
}

}  // namespace

ZRMInspection zrm_inspectSettings(const std::string& path, const std::string& rootPath) {
    ZRMDictionary report{{"settings", nullptr}, {"rejected", ZRMJsonArray()}, {"error", nullptr}};
    const auto failed = [&report](const ZRMError& error) -> ZRMInspection {
        report["error"] = zrm_reportOfError(error);
        return {report, false};
    };
    const auto bytes = zrm_readInspectedFile(path);
    if (!bytes) {
        return failed(bytes.error());
    }
    if (!rootPath.empty()) {
        ZRMJwsInspectionOptions options;
        options.rootPath = rootPath;
        const auto verification = zrm_inspectJws(path, options);
        if (!verification.isGood) {
            report["error"] = verification.report.at("error");
            return {report, false};
        }
    }
    const auto config = configOf(bytes.value());
    if (!config) {
        return failed(config.error());
    }
    const auto rejected = ZRMSettingsJsonValidator::rejectedKeys(config.value());
    report["rejected"] = ZRMJsonArray(rejected.begin(), rejected.end());
    const auto settings = ZRMSettingsProvider::settingsFromValidJson(
        ZRMSettingsJsonValidator::validSettingsJsonFromJson(config.value()));
    if (!settings) {
        return failed(settings.error());
    }
    report["settings"] = ZRMMobileServiceSettings::jsonFromSettings(settings.value());
    return {report, rejected.empty()};
}
