#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsServiceFactory.h"

#include <utility>

#include "ZRMStatistics/ZRMStatistics_Lib/Sender/ZRMStatisticsSenderImpl.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsServiceImpl.h"

namespace {

// The name of the directory and of the file in it.
constexpr const char* kStorageName = "ZRMStatisticsStorage";

}  // namespace

std::shared_ptr<ZRMStatisticsService> ZRMStatisticsServiceFactory::createServiceWithUrl(
    const std::string& url, const std::string& storagePath,
    const std::shared_ptr<ZRMStatisticsCustomHeadersProvider>& customHeadersProvider,
    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider) {
    return createServiceWithUrl(ZRMPlatform::current(), url, storagePath, customHeadersProvider,
                                std::move(serverTimeProvider));
}

std::shared_ptr<ZRMStatisticsService> ZRMStatisticsServiceFactory::createServiceWithUrl(
    std::shared_ptr<const ZRMPlatform> platform, const std::string& url,
    const std::string& storagePath,
    const std::shared_ptr<ZRMStatisticsCustomHeadersProvider>& customHeadersProvider,
    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider) {
    auto storage = createStatisticsStorageAtPath(platform, storagePath);
    auto sender =
        createStatisticsSenderWithUrl(platform, url, customHeadersProvider, serverTimeProvider);
    return std::make_shared<ZRMStatisticsServiceImpl>(
        std::move(platform), std::move(storage), std::move(sender), std::move(serverTimeProvider));
}

std::string ZRMStatisticsServiceFactory::storageUrlAtPath(const std::string& storagePath) {
    const bool hasSlash = storagePath.ends_with('/');
    return storagePath + (hasSlash ? "" : "/") + kStorageName + "/" + kStorageName;
}

std::shared_ptr<ZRMStatisticsStorage> ZRMStatisticsServiceFactory::createStatisticsStorageAtPath(
    const std::shared_ptr<const ZRMPlatform>& platform, const std::string& storagePath) {
    return ZRMStatisticsStorage::create(
        platform, ZRMStatisticsStorageConfiguration::configurationWithStorageUrl(
                      storageUrlAtPath(storagePath), true));
}

std::shared_ptr<ZRMStatisticsSender> ZRMStatisticsServiceFactory::createStatisticsSenderWithUrl(
    const std::shared_ptr<const ZRMPlatform>& platform, const std::string& url,
    const std::shared_ptr<ZRMStatisticsCustomHeadersProvider>& customHeadersProvider,
    const std::shared_ptr<ZRMServerTimeProvider>& serverTimeProvider) {
    return ZRMStatisticsSenderImpl::create(platform, url, customHeadersProvider,
                                           serverTimeProvider);
}
