#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Envelope/ZRMEnvironmentDataProvider.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMDateTimeUtils.h"

std::shared_ptr<ZRMEnvironmentDataProvider> ZRMEnvironmentDataProvider::providerWithClientId(
    std::shared_ptr<const ZRMPlatform> platform, std::string clientId, std::string execSessionId,
    std::string deviceTag, std::optional<std::string> productName,
    std::optional<std::string> productVersion, std::optional<ZRMDate> installationDate) {
    return std::make_shared<ZRMEnvironmentDataProvider>(
        std::move(platform), std::move(clientId), std::move(execSessionId), std::move(deviceTag),
        std::move(productName), std::move(productVersion), installationDate);
}

ZRMEnvironmentDataProvider::ZRMEnvironmentDataProvider(
    std::shared_ptr<const ZRMPlatform> platform, std::string withClientId,
    std::string execSessionId, std::string deviceTag, std::optional<std::string> productName,
    std::optional<std::string> productVersion, std::optional<ZRMDate> installationDate)
    : platform_(std::move(platform)),
      clientId_(std::move(withClientId)),
      execSessionId_(std::move(execSessionId)),
      deviceTag_(std::move(deviceTag)),
      productName_(std::move(productName)),
      productVersion_(std::move(productVersion)),
      installationDate_(installationDate) {}

std::shared_ptr<const ZRMEnvironmentDataImpl> ZRMEnvironmentDataProvider::environmentData() const {
    auto data = std::make_shared<ZRMEnvironmentDataImpl>();
    data->osName = platform_->device->systemName();
    data->osVersion = platform_->device->systemVersion();
    data->deviceTag = deviceTag_;
    data->productName = productName_.value_or("");
    data->productVersion = productVersion_.value_or("");
    data->applicationId = platform_->mainBundle->identifier().value_or("");
    data->applicationVersion = platform_->mainBundle->infoText("CFBundleVersion").value_or("");
    data->applicationInstallationDate = installationDate_;
    data->clientId = clientId_;
    data->execSessionId = execSessionId_;
    data->uptime = ZRMDateTimeUtils::getUptime(*platform_->clock);
    data->startDateTime = ZRMDateTimeUtils::getStartDateTime(*platform_->clock);
    return data;
}
