#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileServiceValueChecker.h"

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSURL/NSURL+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"
#include "ZRMMobileKit/ZRMMobileKitInfo.h"

namespace {

bool isAbsentOrAtMost(const std::optional<std::string>& text, std::uint32_t maximumLength) {
    return !text || (zrm_isValidUtf8(*text) && zrm_utf16Length(*text) <= maximumLength);
}

}  // namespace

bool ZRMMobileServiceValueChecker::isValidHttpUrl(std::string_view url) {
    const auto parsed = ZRMUrl::fromText(url);
    return parsed && zrm_isValidHttpUrl(*parsed);
}

bool ZRMMobileServiceValueChecker::isValidLogin(const std::optional<std::string>& login) {
    return login && !login->empty() && isAbsentOrAtMost(login, kZRMMaxLoginLength);
}

bool ZRMMobileServiceValueChecker::isValidUINavigationPoint(
    const std::optional<std::string>& navigationPoint) {
    return isAbsentOrAtMost(navigationPoint, kZRMMaxUINavigationPointLength);
}

bool ZRMMobileServiceValueChecker::isValidSessionId(const std::optional<std::string>& sessionId) {
    return isAbsentOrAtMost(sessionId, kZRMMaxSessionIdLength);
}
