#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMConfigEvent.h"

#include <array>
#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"

ZRMEventTable<ZRMConfigEvent> ZRMConfigEvent::table() {
    static constexpr std::array kFields{
        zrm_eventField<&ZRMConfigEvent::appliedConfigText>(
            "appliedConfig", "the settings in force, as pretty-printed JSON text"),
    };
    return {"ConfigEvent", 1, kZRMEventPermissionNone, kFields};
}

ZRMConfigEvent::ZRMConfigEvent(ZRMDictionary appliedConfig,
                               std::shared_ptr<const ZRMCommonParametersProvider> provider)
    : ZRMTableEvent(std::move(provider)), appliedConfig_(std::move(appliedConfig)) {}

std::optional<std::string> ZRMConfigEvent::appliedConfigText() const {
    auto text = zrm_prettyJsonText(zrm_repairedJson(appliedConfig_));
    return text ? std::optional(std::move(text).value()) : std::nullopt;
}
