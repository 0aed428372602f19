#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Provider/ZRMSettingsProvider.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDictionary/NSDictionary+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsPayload.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileKitErrorFactory.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMJwsObject+Settings.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMSettingsJsonValidator.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMSettingsKeys.h"

namespace {

ZRMError invalidFormat() {
    return ZRMMobileKitErrorFactory::errorForCode(ZRMMobileKitErrorSettingsInvalidFormat);
}

}  // namespace

ZRMSettingsProvider::ZRMSettingsProvider(std::shared_ptr<const ZRMSettingsStorage> settingsStorage,
                                         ZRMJwsSignatureVerification verification)
    : settingsStorage_(std::move(settingsStorage)), verification_(std::move(verification)) {}

void ZRMSettingsProvider::provideSettings(const Callback& callback) {
    // The provider may be gone by the time of the answer; its address only names it in the log.
    fetchSettingsJsonFromStorageWithCompletionHandler(
        [callback, self = static_cast<const void*>(this)](std::optional<ZRMDictionary> json,
                                                          std::optional<ZRMError> error) {
            if (json) {
                auto settings = settingsFromValidJson(*json);
                if (settings) {
                    callback(std::move(settings).value(), std::nullopt);
                    return;
                }
                error = settings.error();
            }
            if (error) {
                zrm_logError(self, error->localizedDescription());
            }
            callback(ZRMMobileServiceSettings::defaultSettings(), std::move(error));
        });
}

void ZRMSettingsProvider::fetchSettingsJsonFromStorageWithCompletionHandler(
    JsonCallback completionHandler) {
    const auto data = settingsStorage_->readSettings();
    const auto object =
        data ? jwsObjectFromSettingsData(*data) : ZRMResult<ZRMJwsObject>(invalidFormat());
    if (!object) {
        completionHandler(std::nullopt, std::nullopt);
        return;
    }
    verification_(object.value(), false,
                  [completionHandler = std::move(completionHandler),
                   object = object.value()](std::optional<ZRMError> error) {
                      if (error) {
                          completionHandler(std::nullopt, std::move(error));
                          return;
                      }
                      const auto config = configFromJwsObject(object);
                      if (config) {
                          completionHandler(
                              ZRMSettingsJsonValidator::validSettingsJsonFromJson(config.value()),
                              std::nullopt);
                      } else {
                          completionHandler(std::nullopt, config.error());
                      }
                  });
}

ZRMResult<ZRMDictionary> ZRMSettingsProvider::jsonObjectFromData(const ZRMData& data) {
    auto object = zrm_jsonObjectFromSignedData(data);
    if (!object) {
        return invalidFormat();
    }
    return object;
}

ZRMResult<ZRMDictionary> ZRMSettingsProvider::configFromJwsObject(const ZRMJwsObject& jwsObject) {
    const auto data = zrm_dataFromJwsPayload(jwsObject.payload());
    if (!data) {
        return invalidFormat();
    }
    const auto object = jsonObjectFromData(data.value());
    if (!object) {
        return object.error();
    }
    const auto* const config = object.value().if_contains(kZRMSettingsConfigKey);
    if (config == nullptr || !config->is_object()) {
        return ZRMMobileKitErrorFactory::settingsInvalidFormatErrorForField(kZRMSettingsConfigKey,
                                                                            config);
    }
    return config->get_object();
}

ZRMResult<ZRMMobileServiceSettings> ZRMSettingsProvider::settingsFromValidJson(
    const ZRMDictionary& json) {
    const auto defaults =
        ZRMMobileServiceSettings::jsonFromSettings(ZRMMobileServiceSettings::defaultSettings());
    try {
        return ZRMMobileServiceSettings::settingsFromJson(zrm_mergeDictionary(defaults, json));
    } catch (const ZRMSettingsException& exception) {
        // A document must not be able to end the host's process.
        return ZRMMobileKitErrorFactory::errorForCode(
            ZRMMobileKitErrorSettingsInvalidFormat,
            {{kZRMLocalizedDescriptionKey, exception.what()}});
    }
}
