#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Catalogue/ZRMCallInfoEvent.h"

#include <array>
#include <utility>

namespace {

std::string uuidOf(const ZRMCall& call) {
    return call.uuid.value_or("");
}

}  // namespace

ZRMEventTable<ZRMCallInfoEvent> ZRMCallInfoEvent::table() {
    static constexpr std::array kFields{
        zrm_eventField<&ZRMCallInfoEvent::changedCallBody>(
            "changedCall", "the call that changed or is still active, in the stages 1 and 2"),
        zrm_eventField<&ZRMCallInfoEvent::callBodies>("calls", "every current call"),
        zrm_eventField<&ZRMCallInfoEvent::stage>(
            "stage", "0 first report, 1 a connected call changed, 2 one is still active"),
    };
    return {"IOSCallInfoEvent", 1, kZRMEventPermissionNone, kFields};
}

std::span<const ZRMEventField<ZRMCall>> ZRMCallInfoEvent::callFields() {
    static constexpr std::array kFields{
        zrm_eventField<&uuidOf>("uuid", "the call's identifier, empty when it has none"),
        zrm_eventField<&ZRMCall::hasEnded>("hasEnded", "the call has ended"),
        zrm_eventField<&ZRMCall::hasConnected>("hasConnected", "the call has connected"),
        zrm_eventField<&ZRMCall::isOutgoing>("isOutgoing", "the call is outgoing"),
        zrm_eventField<&ZRMCall::isOnHold>("isOnHold", "the call is on hold"),
    };
    return kFields;
}

ZRMCallInfoEvent::ZRMCallInfoEvent(ZRMCallInfoStage stage, std::optional<ZRMCall> changedCall,
                                   std::vector<ZRMCall> calls,
                                   std::shared_ptr<const ZRMCommonParametersProvider> provider)
    : ZRMTableEvent(std::move(provider)),
      stage_(stage),
      changedCall_(std::move(changedCall)),
      calls_(std::move(calls)) {}

std::optional<ZRMDictionary> ZRMCallInfoEvent::changedCallBody() const {
    return changedCall_ ? std::optional(zrm_eventBody(*changedCall_, callFields())) : std::nullopt;
}

std::vector<ZRMDictionary> ZRMCallInfoEvent::callBodies() const {
    std::vector<ZRMDictionary> bodies;
    for (const auto& call : calls_) {
        bodies.push_back(zrm_eventBody(call, callFields()));
    }
    return bodies;
}
