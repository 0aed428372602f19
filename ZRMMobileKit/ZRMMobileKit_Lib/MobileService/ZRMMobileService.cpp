#include "ZRMMobileKit/ZRMMobileService.h"

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMInternalServices.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileServiceImpl.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Certificate/ZRMCertificateProvider.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Provider/ZRMSettingsProvider.h"

// A handler may let go of the service while its operation still runs, so every operation that may
// call one holds the implementation by itself.

namespace {

constexpr const char* kRefusal =
    "Don't use this initializer, use +(instancetype)createServiceWithConfiguration: instead";

// The operation's name and its arguments.
void logOperation(const void* service, const char* name,
                  std::initializer_list<const std::optional<std::string>*> arguments = {}) {
    zrm_logVerbose(service, [name, &arguments] {
        std::string text = name;
        for (const auto* const argument : arguments) {
            text.append(" ").append(*argument ? zrm_repairedUtf8(**argument) : "(null)");
        }
        return text;
    });
}

void logLogin(const void* service, const char* name, const std::optional<std::string>& userName,
              ZRMLoginResult result, const std::optional<std::string>& userId) {
    const std::optional resultText = zrm_stringFromLoginResult(result);
    logOperation(service, name, {&userName, &resultText, &userId});
}

// Stands in where the host gives no handler.
ZRMMobileService::CompletionHandler loggingHandler(
    const std::shared_ptr<ZRMMobileServiceImpl>& service) {
    return ZRMFailureHandler{[weakService = std::weak_ptr(service)](const ZRMError& error) {
        zrm_logError(weakService.lock().get(), error.localizedDescription());
    }};
}

}  // namespace

std::shared_ptr<ZRMMobileService> ZRMMobileService::createServiceWithConfiguration(
    const ZRMMobileServiceConfiguration& configuration) {
    auto platform = ZRMPlatform::current();
    auto settingsProvider = std::make_shared<ZRMSettingsProvider>(
        std::make_shared<ZRMSettingsStorage>(platform->fileManager, platform->directories),
        zrm_jwsStoredSignatureVerification(
            platform, ZRMCertificateProvider::rootCertificate(*platform->resourceBundles,
                                                              *platform->fileManager)));
    auto impl = std::make_shared<ZRMMobileServiceImpl>(std::move(platform), configuration,
                                                       std::move(settingsProvider));
    return std::shared_ptr<ZRMMobileService>(new ZRMMobileService(std::move(impl)));
}

ZRMMobileService::ZRMMobileService() {
    zrm_logError(this, kRefusal);
    throw ZRMInvalidArgument(kRefusal);
}

ZRMMobileService::ZRMMobileService(std::shared_ptr<ZRMMobileServiceImpl> impl)
    : impl_(std::move(impl)) {}

ZRMMobileService::~ZRMMobileService() = default;

void ZRMMobileService::activateWithCompletionHandler(CompletionHandler completionHandler) {
    const auto impl = impl_;
    impl->activateWithCompletionHandler(std::move(completionHandler));
}

void ZRMMobileService::startWithCompletionHandler(CompletionHandler completionHandler) {
    const auto impl = impl_;
    logOperation(impl.get(), "startWithCompletionHandler:");
    impl->startWithCompletionHandler(std::move(completionHandler));
}

void ZRMMobileService::analyzeEnvironment() {
    logOperation(impl_.get(), "analyzeEnvironment");
    analyzeEnvironmentWithCompletionHandler(loggingHandler(impl_));
}

void ZRMMobileService::analyzeEnvironmentWithCompletionHandler(
    CompletionHandler completionHandler) {
    const auto impl = impl_;
    logOperation(impl.get(), "analyzeEnvironmentWithCompletionHandler:");
    impl->analyzeEnvironmentWithCompletionHandler(std::move(completionHandler));
}

void ZRMMobileService::sendLogin(const std::optional<std::string>& userId, ZRMLoginResult result) {
    logLogin(impl_.get(), "sendLogin:result:", std::nullopt, result, userId);
    sendLogin(userId, result, loggingHandler(impl_));
}

void ZRMMobileService::sendLogin(const std::optional<std::string>& userId, ZRMLoginResult result,
                                 CompletionHandler completionHandler) {
    logLogin(impl_.get(), "sendLogin:result:completionHandler:", std::nullopt, result, userId);
    sendLogin(userId, result, std::nullopt, std::move(completionHandler));
}

void ZRMMobileService::sendLogin(const std::optional<std::string>& userId, ZRMLoginResult result,
                                 const std::optional<std::string>& userName) {
    logLogin(impl_.get(), "sendLogin:result:userName:", userName, result, userId);
    sendLogin(userId, result, userName, loggingHandler(impl_));
}

void ZRMMobileService::sendLogin(const std::optional<std::string>& userId, ZRMLoginResult result,
                                 const std::optional<std::string>& userName,
                                 CompletionHandler completionHandler) {
    const auto impl = impl_;
    logLogin(impl.get(), "sendLogin:result:userName:completionHandler:", userName, result, userId);
    impl->sendLogin(userId, result, userName, std::move(completionHandler));
}

void ZRMMobileService::sendLogout() {
    logOperation(impl_.get(), "sendLogout");
    sendLogoutWithCompletionHandler(loggingHandler(impl_));
}

void ZRMMobileService::sendLogoutWithCompletionHandler(CompletionHandler completionHandler) {
    const auto impl = impl_;
    logOperation(impl.get(), "sendLogoutWithCompletionHandler:");
    impl->sendLogout(std::move(completionHandler));
}

void ZRMMobileService::sendUINavigationEvent(const std::optional<std::string>& navigationPoint) {
    logOperation(impl_.get(), "sendUINavigationEvent:", {&navigationPoint});
    sendUINavigationEvent(navigationPoint, loggingHandler(impl_));
}

void ZRMMobileService::sendUINavigationEvent(const std::optional<std::string>& navigationPoint,
                                             CompletionHandler completionHandler) {
    const auto impl = impl_;
    logOperation(impl.get(), "sendUINavigationEvent:completionHandler:", {&navigationPoint});
    impl->sendUINavigationEvent(navigationPoint, std::move(completionHandler));
}

void ZRMMobileService::sendSessionId(const std::optional<std::string>& sessionId) {
    logOperation(impl_.get(), "sendSessionId:", {&sessionId});
    sendSessionId(sessionId, loggingHandler(impl_));
}

void ZRMMobileService::sendSessionId(const std::optional<std::string>& sessionId,
                                     CompletionHandler completionHandler) {
    const auto impl = impl_;
    logOperation(impl.get(), "sendSessionId:completionHandler:", {&sessionId});
    impl->sendSessionId(sessionId, std::move(completionHandler));
}

void ZRMMobileService::sendGeoLocation() {
    logOperation(impl_.get(), "sendGeoLocation");
    sendGeoLocationWithCompletionHandler(loggingHandler(impl_));
}

void ZRMMobileService::sendGeoLocationWithCompletionHandler(CompletionHandler completionHandler) {
    const auto impl = impl_;
    logOperation(impl.get(), "sendGeoLocationWithCompletionHandler:");
    impl->sendGeoLocation(std::move(completionHandler));
}

std::optional<std::string> ZRMMobileService::deviceTag() const {
    logOperation(impl_.get(), "deviceTag");
    return impl_->deviceTag();
}

// Hosts ask for the two counts again and again while they wait: that would flood the log.
std::size_t ZRMMobileService::pendingEventCount() const {
    return impl_->pendingEventCount();
}

std::size_t ZRMMobileService::unstoredEventCount() const {
    return impl_->unstoredEventCount();
}

std::string ZRMMobileService::version() const {
    logOperation(impl_.get(), "version");
    return kZRMMobileKitVersion;
}
