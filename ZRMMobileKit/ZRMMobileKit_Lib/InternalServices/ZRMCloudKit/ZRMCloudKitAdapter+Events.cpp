#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMCloudKit/Operations/ZRMCloudKitSendLocationOperation.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMCloudKit/ZRMCloudKitAdapter.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileKitErrorFactory.h"

namespace {

struct EventTexts {
    std::string value;
    std::string result;
    std::string userId;
};

// One row for each kind: the switch that governs it and the call that sends it.
struct EventRow {
    bool (ZRMEventSettings::*isDisabled)() const;
    void (*send)(ZRMCloudKit& core, const EventTexts& texts);  // null: a location request
};

constexpr EventRow kRows[] = {
    {&ZRMEventSettings::isUserLoginEventDisabled,
     [](ZRMCloudKit& core, const EventTexts& texts) {
         core.sendUserLogin(texts.value, texts.result, texts.userId);
     }},
    {&ZRMEventSettings::isUserLogoutEventDisabled,
     [](ZRMCloudKit& core, const EventTexts& /*texts*/) { core.sendUserLogout(); }},
    {&ZRMEventSettings::isUiNavigationEventDisabled,
     [](ZRMCloudKit& core, const EventTexts& texts) { core.sendUINavigationPoint(texts.value); }},
    {&ZRMEventSettings::isSessionIdEventDisabled,
     [](ZRMCloudKit& core, const EventTexts& texts) { core.sendSessionId(texts.value); }},
    {&ZRMEventSettings::isCoordinatesEventDisabled, nullptr},
};

}  // namespace

void ZRMCloudKitAdapter::sendEvent(ZRMMobileServiceEventType event,
                                   const std::optional<std::string>& value,
                                   const std::optional<std::string>& result,
                                   const std::optional<std::string>& userId,
                                   const CompletionHandler& completionHandler) {
    const auto kind = static_cast<unsigned>(event);
    if (kind >= std::size(kRows)) {
        completionHandler(std::nullopt);
        throw ZRMAssertionFailure("Unsupported event with value: ");
    }
    const auto& row = kRows[kind];
    if ((mobileServiceSettings_.events().*row.isDisabled)()) {
        completionHandler(ZRMMobileKitErrorFactory::errorForCode(ZRMMobileKitErrorEventDisabled));
        return;
    }
    if (const auto core = cloudKit()) {
        if (row.send != nullptr) {
            row.send(*core, {value.value_or(""), result.value_or(""), userId.value_or("")});
        } else {
            sendDeviceLocationIfNeeded(core);
        }
    }
    completionHandler(std::nullopt);
}

void ZRMCloudKitAdapter::sendDeviceLocationIfNeeded(const std::shared_ptr<ZRMCloudKit>& cloudKit) {
    if (!mobileServiceSettings_.events().isCoordinatesEventDisabled()) {
        queue_.addOperation(
            std::make_shared<ZRMCloudKitSendLocationOperation>(platform_->consoleLog, cloudKit));
    }
}
