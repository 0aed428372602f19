#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMUserLoginEvent.h"

#include <array>
#include <utility>

ZRMEventTable<ZRMUserLoginEvent> ZRMUserLoginEvent::table() {
    static constexpr std::array kFields{
        zrm_eventField<&ZRMUserLoginEvent::reportedUserName>("userName",
                                                             "the user's name, unless it is empty"),
        zrm_eventField<&ZRMUserLoginEvent::userId>("userId", "the user's identifier"),
        zrm_eventField<&ZRMUserLoginEvent::result>(
            "result",
            "SUCCESS, INCORRECT_LOGIN, INCORRECT_PASSWORD, DROP_CONNECTION, CLOSE_APPLICATION, "
            "AUTH_TIMEOUT or UNKNOWN_ERROR"),
    };
    return {"UserLoginEvent", 2, kZRMEventPermissionNone, kFields};
}

ZRMUserLoginEvent::ZRMUserLoginEvent(std::string userName, std::string result, std::string userId,
                                     std::shared_ptr<const ZRMCommonParametersProvider> provider)
    : ZRMTableEvent(std::move(provider)),
      userName_(std::move(userName)),
      result_(std::move(result)),
      userId_(std::move(userId)) {}

std::optional<std::string> ZRMUserLoginEvent::reportedUserName() const {
    return userName_.empty() ? std::nullopt : std::optional(userName_);
}
