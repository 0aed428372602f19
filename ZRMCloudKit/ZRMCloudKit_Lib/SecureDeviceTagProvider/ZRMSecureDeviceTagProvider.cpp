#include "ZRMCloudKit/ZRMCloudKit_Lib/SecureDeviceTagProvider/ZRMSecureDeviceTagProvider.h"

#include <algorithm>
#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMBlockOperation.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Uuid/ZRMUuid.h"

namespace {

constexpr const char* kPlaceholderBeginning = "L!";
constexpr const char* kEnvironmentDataKey = "environmentData";
constexpr std::int64_t kMillisecondsPerSecond = 1000;

}  // namespace

std::shared_ptr<ZRMSecureDeviceTagProvider> ZRMSecureDeviceTagProvider::initWithUrl(
    std::shared_ptr<const ZRMPlatform> platform, ZRMSecureDeviceTagParameters parameters) {
    auto verification = zrm_jwsSignatureVerification(platform, parameters.rootCertificate);
    return std::make_shared<ZRMSecureDeviceTagProvider>(std::move(platform), std::move(parameters),
                                                        std::move(verification));
}

ZRMSecureDeviceTagProvider::ZRMSecureDeviceTagProvider(std::shared_ptr<const ZRMPlatform> platform,
                                                       ZRMSecureDeviceTagParameters parameters,
                                                       ZRMJwsSignatureVerification verification)
    : platform_(std::move(platform)),
      parameters_(std::move(parameters)),
      verification_(std::move(verification)),
      queue_(platform_->executor, zrm_queueNameForClass("ZRMSecureDeviceTagProvider"), 1) {
    auto tag = parameters_.storage->secureDeviceTag();
    if (!tag) {
        tag = kPlaceholderBeginning + zrm_makeUuidText(*platform_->random);
        parameters_.storage->setSecureDeviceTag(tag);
    }
    secureDeviceTag_ = std::move(*tag);
}

std::string ZRMSecureDeviceTagProvider::secureDeviceTag() const {
    const ZRMLockGuard lock(mutex_);
    return secureDeviceTag_;
}

bool ZRMSecureDeviceTagProvider::isRefreshNeeded() const {
    return platform_->clock->now() >= parameters_.storage->secureDeviceTagRefreshDate();
}

void ZRMSecureDeviceTagProvider::refreshIfNeeded() {
    if (isRefreshNeeded()) {
        refresh();
    } else {
        scheduleRefresh();
    }
}

void ZRMSecureDeviceTagProvider::scheduleRefresh() {
    const auto delay =
        parameters_.storage->secureDeviceTagRefreshDate().secondsSince(platform_->clock->now());
    platform_->executor->mainQueue()->postAfter(std::max(delay, kShortestDelay),
                                                [weak = weak_from_this()] {
                                                    const auto self = weak.lock();
                                                    if (self == nullptr) {
                                                        return;
                                                    }
                                                    self->queue_.addOperationWithBlock([weak] {
                                                        if (const auto provider = weak.lock()) {
                                                            provider->refresh();
                                                        }
                                                    });
                                                });
}

std::optional<ZRMUrlRequest> ZRMSecureDeviceTagProvider::makeRequestForSecureDeviceTag() const {
    const auto body = zrm_compactJsonText(
        ZRMDictionary{{kEnvironmentDataKey, parameters_.environmentData->dictionary()}});
    if (!body) {
        zrm_logError(this, body.error().localizedDescription());
        return std::nullopt;
    }
    const auto& serverTime = parameters_.serverTimeProvider;

    ZRMUrlRequest request;
    request.url = parameters_.url;
    request.method = "POST";
    request.headers.set("Content-Type", "application/json");
    request.headers.set("Accept", "application/jose+json");
    request.headers.set("Accept-Encoding", "deflate, gzip");
    request.headers.set("Mobile-UUID", secureDeviceTag());
    if (serverTime != nullptr && serverTime->isValid()) {
        request.headers.set("Request-Server-Timestamp",
                            std::to_string(serverTime->getTime() / kMillisecondsPerSecond));
    }
    request.body = std::make_shared<const ZRMData>(zrm_dataFromText(body.value()));
    return request;
}

void ZRMSecureDeviceTagProvider::refresh() {
    auto request = makeRequestForSecureDeviceTag();
    if (!request) {
        return;
    }
    const auto operation =
        std::make_shared<ZRMUrlRequestOperation>(platform_, std::move(*request), true);
    const auto completion = ZRMBlockOperation::blockOperationWithBlock(
        [self = shared_from_this(), operation] { self->requestEnded(*operation); });
    completion->addDependency(operation);
    queue_.addOperations({operation, completion});
}

void ZRMSecureDeviceTagProvider::requestEnded(const ZRMUrlRequestOperation& operation) {
    const auto data = operation.data();
    if (!data) {
        const auto error = operation.error();
        zrm_logError(this, "Request secure deivce tag error: " +
                               (error ? error->localizedDescription() : "(null)"));
        return;
    }
    const auto response = operation.response();
    const auto* const date = response ? response->headers.find("Date") : nullptr;
    if (date != nullptr && parameters_.serverTimeProvider != nullptr) {
        parameters_.serverTimeProvider->setTime(*date);
    }
    const auto object = ZRMJwsObject::jwsObjectFromData(*data);
    if (!object) {
        zrm_logError(this,
                     "Can't create JWS object from data: " + object.error().localizedDescription());
        return;
    }
    verification_(
        object.value(), true,
        [self = shared_from_this(), object = object.value()](const std::optional<ZRMError>& error) {
            self->responseVerified(object, error);
        });
}

void ZRMSecureDeviceTagProvider::responseVerified(const ZRMJwsObject& object,
                                                  const std::optional<ZRMError>& error) {
    if (error) {
        zrm_logError(this, "Recieved data verify error: " + error->localizedDescription());
        return;
    }
    const auto payload = ZRMSecureDeviceTagPayload::fromJwsPayload(object.payload());
    if (!payload) {
        zrm_logError(this, "Recieved data parse error: " + payload.error().localizedDescription());
        return;
    }
    takeOver(payload.value());
}

void ZRMSecureDeviceTagProvider::takeOver(const ZRMSecureDeviceTagPayload& payload) {
    const auto refreshDate = platform_->clock->now().addingSeconds(payload.refreshInterval);
    const bool saved = parameters_.storage->execSaveTransaction([&](ZRMCloudKitSettings& storage) {
        storage.setSecureDeviceTag(payload.tag);
        storage.setSecureDeviceTagRefreshInterval(payload.refreshInterval);
        storage.setSecureDeviceTagRefreshDate(refreshDate);
    });
    if (!saved) {
        zrm_logError(this, "Save storage error");
    }
    {
        const ZRMLockGuard lock(mutex_);
        secureDeviceTag_ = payload.tag;
    }
    scheduleRefresh();
}
