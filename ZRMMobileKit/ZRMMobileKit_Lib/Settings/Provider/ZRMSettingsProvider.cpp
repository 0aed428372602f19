#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Provider/ZRMSettingsProvider.h"

void ZRMSettingsProvider::provideSettings(const Callback& callback) {
    callback(ZRMMobileServiceSettings::defaultSettings(), std::nullopt);
}
