#include "ZRMMobileKit/ZRMMobileServiceConfiguration.h"

#include <utility>

ZRMMobileServiceConfiguration ZRMMobileServiceConfiguration::configuration() {
    return {};
}

ZRMMobileServiceConfiguration::ZRMMobileServiceConfiguration() = default;
ZRMMobileServiceConfiguration::ZRMMobileServiceConfiguration(
    const ZRMMobileServiceConfiguration& other) = default;
ZRMMobileServiceConfiguration::ZRMMobileServiceConfiguration(
    ZRMMobileServiceConfiguration&& other) noexcept = default;
ZRMMobileServiceConfiguration& ZRMMobileServiceConfiguration::operator=(
    const ZRMMobileServiceConfiguration& other) = default;
ZRMMobileServiceConfiguration& ZRMMobileServiceConfiguration::operator=(
    ZRMMobileServiceConfiguration&& other) noexcept = default;
ZRMMobileServiceConfiguration::~ZRMMobileServiceConfiguration() = default;

const std::optional<std::string>& ZRMMobileServiceConfiguration::statisticsUrl() const {
    return statisticsUrl_;
}

void ZRMMobileServiceConfiguration::setStatisticsUrl(std::optional<std::string> statisticsUrl) {
    statisticsUrl_ = std::move(statisticsUrl);
}

std::uint64_t ZRMMobileServiceConfiguration::logLevel() const {
    return logLevel_;
}

void ZRMMobileServiceConfiguration::setLogLevel(std::uint64_t logLevel) {
    logLevel_ = logLevel;
}
