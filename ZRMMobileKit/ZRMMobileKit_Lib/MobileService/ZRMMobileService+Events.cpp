#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileKitErrorFactory.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileServiceImpl.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileServiceValueChecker.h"

namespace {

using Checker = ZRMMobileServiceValueChecker;

// Says in the log what is wrong with the value and tells the handler.
void refuse(const void* service, const char* what, const std::optional<std::string>& value,
            ZRMMobileKitErrorCode code, const ZRMMobileService::CompletionHandler& handler) {
    const auto text = value.value_or("");
    zrm_logError(service, std::string("Invalid ") + what + " value (" +
                              (zrm_isValidUtf8(text)
                                   ? std::to_string(zrm_utf16Length(text)) + " characters)"
                                   : std::to_string(text.size()) + " bytes that are no UTF-8)"));
    if (handler) {
        handler(ZRMMobileKitErrorFactory::errorForCode(code));
    }
}

}  // namespace

void ZRMMobileServiceImpl::sendLogin(const std::optional<std::string>& userId,
                                     ZRMLoginResult result,
                                     const std::optional<std::string>& userName,
                                     CompletionHandler completionHandler) {
    const auto resultText = zrm_stringFromLoginResult(result);
    if (!Checker::isValidLogin(userId)) {
        refuse(this, "userId", userId, ZRMMobileKitErrorInvalidLogin, completionHandler);
        return;
    }
    if (userName && !userName->empty() && !Checker::isValidLogin(userName)) {
        refuse(this, "userName", userName, ZRMMobileKitErrorInvalidLogin, completionHandler);
        return;
    }
    processEvent(ZRMMobileServiceEventType::UserLogin, userName, resultText, userId,
                 std::move(completionHandler));
}

void ZRMMobileServiceImpl::sendLogout(CompletionHandler completionHandler) {
    processEvent(ZRMMobileServiceEventType::UserLogout, std::nullopt, std::nullopt, std::nullopt,
                 std::move(completionHandler));
}

void ZRMMobileServiceImpl::sendUINavigationEvent(const std::optional<std::string>& navigationPoint,
                                                 CompletionHandler completionHandler) {
    if (!Checker::isValidUINavigationPoint(navigationPoint)) {
        refuse(this, "UI navigation event", navigationPoint,
               ZRMMobileKitErrorInvalidUINavigationPoint, completionHandler);
        return;
    }
    processEvent(ZRMMobileServiceEventType::UINavigation, navigationPoint, std::nullopt,
                 std::nullopt, std::move(completionHandler));
}

void ZRMMobileServiceImpl::sendSessionId(const std::optional<std::string>& sessionId,
                                         CompletionHandler completionHandler) {
    if (!Checker::isValidSessionId(sessionId)) {
        refuse(this, "session id", sessionId, ZRMMobileKitErrorInvalidSessionId, completionHandler);
        return;
    }
    processEvent(ZRMMobileServiceEventType::SessionId, sessionId, std::nullopt, std::nullopt,
                 std::move(completionHandler));
}

void ZRMMobileServiceImpl::sendGeoLocation(CompletionHandler completionHandler) {
    processEvent(ZRMMobileServiceEventType::GeoLocation, std::nullopt, std::nullopt, std::nullopt,
                 std::move(completionHandler));
}

void ZRMMobileServiceImpl::processEvent(ZRMMobileServiceEventType event,
                                        const std::optional<std::string>& value,
                                        const std::optional<std::string>& result,
                                        const std::optional<std::string>& userId,
                                        CompletionHandler completionHandler) {
    // A continuation needs something to call.
    if (!completionHandler) {
        completionHandler = [](const std::optional<ZRMError>& /*error*/) {};
    }
    const auto services = internalServices();
    if (services == nullptr || services->isEmpty()) {
        completionHandler(ZRMMobileKitErrorFactory::errorForCode(ZRMMobileKitErrorServiceNotReady));
        return;
    }
    // By its own type, which says that a success need not be brought to it.
    if (const auto* const failureHandler = completionHandler.target<ZRMFailureHandler>()) {
        services->sendEvent(event, value, result, userId, *failureHandler);
    } else {
        services->sendEvent(event, value, result, userId, std::move(completionHandler));
    }
}

std::optional<std::string> ZRMMobileServiceImpl::deviceTag() const {
    const auto services = internalServices();
    return services ? services->deviceTag() : std::nullopt;
}

std::size_t ZRMMobileServiceImpl::pendingEventCount() const {
    const auto services = internalServices();
    return services ? services->pendingEventCount() : 0;
}

std::size_t ZRMMobileServiceImpl::unstoredEventCount() const {
    const auto services = internalServices();
    return services ? services->unstoredEventCount() : 0;
}
