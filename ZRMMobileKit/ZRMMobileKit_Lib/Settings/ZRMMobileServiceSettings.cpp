#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMMobileServiceSettings.h"

#include "ZRMCoreKit/ZRMCoreKit_Lib/Url/ZRMUrl.h"

std::optional<std::string> ZRMMobileServiceSettings::getClientIdFromStatisticsUrl() const {
    const auto url = ZRMUrl::fromText(urls_.statisticsUrl());
    return url ? url->queryItem("cid") : std::nullopt;
}

std::string ZRMMobileServiceSettings::customizedClientId() const {
    return getClientIdFromStatisticsUrl().value_or(ids_.clientId());
}
