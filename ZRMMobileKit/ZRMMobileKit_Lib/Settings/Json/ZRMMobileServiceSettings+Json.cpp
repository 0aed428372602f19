#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMMobileServiceSettings.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMSettingsTable.h"

ZRMMobileServiceSettings ZRMMobileServiceSettings::defaultSettings() {
    ZRMDictionary document;
    for (const auto& field : zrm_settingsTable()) {
        if (field.defaultText != nullptr) {
            document[field.key] = field.defaultText;
        }
    }
    return settingsFromJson(document);
}

ZRMMobileServiceSettings ZRMMobileServiceSettings::settingsFromJson(const ZRMDictionary& document) {
    ZRMMobileServiceSettings settings;
    for (const auto& field : zrm_settingsTable()) {
        if (field.read != nullptr) {
            field.read(settings, document, field.key);
        }
    }
    return settings;
}

ZRMDictionary ZRMMobileServiceSettings::jsonFromSettings(const ZRMMobileServiceSettings& settings) {
    ZRMDictionary document;
    for (const auto& field : zrm_settingsTable()) {
        if (field.write != nullptr) {
            field.write(settings, document, field.key);
        }
    }
    return document;
}

ZRMSettingsException ZRMMobileServiceSettings::makeExceptionForKey(const std::string& key,
                                                                   ZRMDictionary userInfo) {
    return {"Parameter is nil: " + key, std::move(userInfo)};
}
