// Builds the statistics service with its store and its sender.
#pragma once

#include <memory>
#include <string>

#include "ZRMCoreKit/ZRMCoreKit_Lib/ServerTime/ZRMServerTimeProvider.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsCustomHeadersProvider.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsService.h"

class ZRMStatisticsSender;
class ZRMStatisticsStorage;

class ZRMStatisticsServiceFactory {
  public:
    // `url` is the statistics endpoint as an absolute address, `storagePath` the directory below
    // which the store lies. The headers provider is kept weakly. Never absent: where the store
    // cannot be opened the service works without one, which is logged. Runs on the installed
    // platform.
    static std::shared_ptr<ZRMStatisticsService> createServiceWithUrl(
        const std::string& url, const std::string& storagePath,
        const std::shared_ptr<ZRMStatisticsCustomHeadersProvider>& customHeadersProvider,
        std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider);

    static std::shared_ptr<ZRMStatisticsService> createServiceWithUrl(
        std::shared_ptr<const ZRMPlatform> platform, const std::string& url,
        const std::string& storagePath,
        const std::shared_ptr<ZRMStatisticsCustomHeadersProvider>& customHeadersProvider,
        std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider);

    // The parts. The store lies at "ZRMStatisticsStorage/ZRMStatisticsStorage" below the path;
    // null, with a log line, when it cannot be opened.
    static std::string storageUrlAtPath(const std::string& storagePath);
    static std::shared_ptr<ZRMStatisticsStorage> createStatisticsStorageAtPath(
        const std::shared_ptr<const ZRMPlatform>& platform, const std::string& storagePath);
    static std::shared_ptr<ZRMStatisticsSender> createStatisticsSenderWithUrl(
        const std::shared_ptr<const ZRMPlatform>& platform, const std::string& url,
        const std::shared_ptr<ZRMStatisticsCustomHeadersProvider>& customHeadersProvider,
        const std::shared_ptr<ZRMServerTimeProvider>& serverTimeProvider);
};
