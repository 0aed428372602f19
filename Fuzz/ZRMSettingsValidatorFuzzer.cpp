// Settings documents: what the validator lets through makes settings, or fails by the key of a URL
// that is none; every entry of a known key is let through or rejected, and nothing else is.
#include <algorithm>

#include "Fuzz/ZRMFuzz.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMSettingsJsonValidator.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Provider/ZRMSettingsProvider.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMSettingsTable.h"

void zrm_fuzz(std::span<const std::uint8_t> input) {
    const auto json = ZRMSettingsProvider::jsonObjectFromData({input.begin(), input.end()});
    if (!json) {
        return;
    }
    std::optional<ZRMError> error;
    const auto valid = ZRMSettingsJsonValidator::validSettingsJsonFromJson(json.value(), error);
    const auto rejected = ZRMSettingsJsonValidator::rejectedKeys(json.value());
    ZRM_FUZZ_ASSERT(error.has_value() == !rejected.empty());

    std::size_t known = 0;
    for (const auto& field : zrm_settingsTable()) {
        const bool isTaken =
            field.rule != ZRMSettingsRule::NeverTaken && json.value().contains(field.key);
        known += isTaken ? 1 : 0;
        const bool isRejected = std::ranges::find(rejected, field.key) != rejected.end();
        ZRM_FUZZ_ASSERT(valid.contains(field.key) == (isTaken && !isRejected));
    }
    ZRM_FUZZ_ASSERT(valid.size() + rejected.size() == known);
    ZRM_FUZZ_ASSERT(ZRMSettingsJsonValidator::validSettingsJsonFromJson(valid) == valid);

    const auto settings = ZRMSettingsProvider::settingsFromValidJson(valid);
    ZRM_FUZZ_ASSERT(settings ||
                    settings.error().localizedDescription().starts_with("Parameter is nil: "));
    if (settings) {
        ZRM_FUZZ_ASSERT(ZRMMobileServiceSettings::jsonFromSettings(settings.value()).size() ==
                        zrm_settingsTable().size());
    }
}
