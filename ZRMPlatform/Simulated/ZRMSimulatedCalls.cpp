#include "ZRMPlatform/Simulated/ZRMSimulatedCalls.h"

#include <algorithm>
#include <utility>

void ZRMSimulatedCallList::update(const ZRMCall& call) {
    const auto found = std::ranges::find(calls_, call.uuid, &ZRMCall::uuid);
    if (call.hasEnded) {
        if (found != calls_.end()) {
            calls_.erase(found);
        }
    } else if (found != calls_.end()) {
        *found = call;
    } else {
        calls_.push_back(call);
    }
    listeners_.tell(call);
}

ZRMSimulatedCalls::ZRMSimulatedCalls(std::shared_ptr<ZRMSimulatedCallList> list,
                                     std::shared_ptr<ZRMSimulatedProcess> process)
    : list_(std::move(list)), process_(std::move(process)) {}

std::shared_ptr<ZRMSubscription> ZRMSimulatedCalls::observeCalls(std::shared_ptr<ZRMQueue> queue,
                                                                 Callback callback) {
    return list_->listeners().add(process_, std::move(queue), std::move(callback));
}
