#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Updater/ZRMSettingsUpdater.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMBlockOperation.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMJwsObject+Settings.h"

namespace {

constexpr std::int64_t kMillisecondsPerSecond = 1000;

void setPresent(ZRMDictionary& dictionary, const char* key,
                const std::optional<std::string>& value) {
    if (value) {
        dictionary[key] = *value;
    }
}

}  // namespace

ZRMSettingsUpdater::ZRMSettingsUpdater(std::shared_ptr<const ZRMPlatform> platform,
                                       ZRMSettingsUpdaterParameters parameters)
    : platform_(std::move(platform)),
      parameters_(std::move(parameters)),
      queue_(platform_->executor, zrm_queueNameForClass("ZRMSettingsUpdater"), 1) {}

bool ZRMSettingsUpdater::isUpdateNeeded() const {
    return platform_->clock->now().secondsSince1970 >
           parameters_.updateTimestampProvider->settingsUpdateTimestamp() +
               parameters_.settings.timeIntervals().settingsUpdateInterval();
}

void ZRMSettingsUpdater::updateWithCompletionHandler(CompletionHandler completionHandler) {
    if (!isUpdateNeeded()) {
        zrm_logVerbose(this, "No need to update settings");
        completionHandler(std::nullopt);
        return;
    }
    auto request = makeRequestForSettings();
    if (!request) {
        zrm_logError(this, request.error().localizedDescription());
        completionHandler(request.error());
        return;
    }
    const auto operation =
        std::make_shared<ZRMUrlRequestOperation>(platform_, std::move(request).value(), true);
    const auto completion = ZRMBlockOperation::blockOperationWithBlock(
        [self = shared_from_this(), operation, completionHandler = std::move(completionHandler)] {
            self->requestEnded(*operation, completionHandler);
        });
    completion->addDependency(operation);
    queue_.addOperations({operation, completion});
}

void ZRMSettingsUpdater::requestEnded(const ZRMUrlRequestOperation& operation,
                                      const CompletionHandler& completionHandler) {
    const auto data = operation.data();
    if (!data) {
        const auto error = operation.error();
        zrm_logError(
            this, "Download settings error: " + (error ? error->localizedDescription() : "(null)"));
        completionHandler(error);
        return;
    }
    const auto response = operation.response();
    const auto* const date = response ? response->headers.find("Date") : nullptr;
    if (date != nullptr && parameters_.serverTimeProvider != nullptr) {
        parameters_.serverTimeProvider->setTime(*date);
    }
    zrm_logVerbose(this, "Received settings data (" + std::to_string(data->size()) + " bytes)");
    const auto object = jwsObjectFromSettingsData(*data);
    if (!object) {
        zrm_logError(this,
                     "Can't create JWS object from data: " + object.error().localizedDescription());
        completionHandler(object.error());
        return;
    }
    parameters_.verification(object.value(), true,
                             [self = shared_from_this(), data = *data,
                              completionHandler](const std::optional<ZRMError>& error) {
                                 self->settingsVerified(data, error, completionHandler);
                             });
}

void ZRMSettingsUpdater::settingsVerified(const ZRMData& data, const std::optional<ZRMError>& error,
                                          const CompletionHandler& completionHandler) {
    if (error) {
        zrm_logError(this, "Received settings data verify error: " + error->localizedDescription());
        completionHandler(error);
        return;
    }
    zrm_logVerbose(this, "Received settings data verified succesfully");
    if (const auto failure = parameters_.settingsStorage->writeSettings(data)) {
        zrm_logError(this, "Save settings error: " + failure->localizedDescription());
        completionHandler(failure);
        return;
    }
    zrm_logVerbose(this, "Received settings data saved succesfully");
    // After the document: a crash in between costs a second download, not a missed one.
    parameters_.updateTimestampProvider->setSettingsUpdateTimestamp(
        platform_->clock->now().secondsSince1970);
    completionHandler(std::nullopt);
}

ZRMResult<ZRMUrlRequest> ZRMSettingsUpdater::makeRequestForSettings() const {
    auto params = paramsForRequest();
    if (!params) {
        return params.error();
    }
    const auto& serverTime = parameters_.serverTimeProvider;

    ZRMUrlRequest request;
    request.url = parameters_.settings.urls().settingsUpdateUrl();
    request.method = "POST";
    request.headers.set("Content-Type", "application/json");
    request.headers.set("Accept", "application/jose+json");
    request.headers.set("Accept-Encoding", "deflate, gzip");
    request.headers.set("Cache-control", "must-revalidate");
    request.headers.set("Mobile-UUID", parameters_.deviceTagProvider->secureDeviceTag());
    if (serverTime != nullptr && serverTime->isValid()) {
        request.headers.set("Request-Server-Timestamp",
                            std::to_string(serverTime->getTime() / kMillisecondsPerSecond));
    }
    request.body = std::make_shared<const ZRMData>(std::move(params).value());
    return request;
}

ZRMResult<ZRMData> ZRMSettingsUpdater::paramsForRequest() const {
    const auto deviceTag = parameters_.deviceTagProvider->deviceTag();

    ZRMDictionary params;
    setPresent(params, "appId", platform_->mainBundle->identifier());
    setPresent(params, "appVersion", platform_->mainBundle->infoText("CFBundleVersion"));
    params["os"] = platform_->device->systemName();
    params["osVersion"] = platform_->device->systemVersion().value_or("unknown");
    params["clientId"] = parameters_.settings.customizedClientId();
    params["version"] = parameters_.serviceVersion;
    setPresent(params, "deviceTag", deviceTag.empty() ? std::nullopt : std::optional(deviceTag));

    const auto text = zrm_prettyJsonText(params);
    zrm_logVerbose(this, [&text] {
        return "Params for settings request:\n" +
               (text ? text.value() : text.error().localizedDescription());
    });
    const auto body = zrm_compactJsonText(params);
    if (!body) {
        return body.error();
    }
    return zrm_dataFromText(body.value());
}
