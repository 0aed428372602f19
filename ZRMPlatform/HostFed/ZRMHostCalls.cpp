#include "ZRMPlatform/HostFed/ZRMHostCalls.h"

#include <algorithm>
#include <utility>

bool ZRMHostCalls::apply(const ZRMCall& call) {
    const auto found = std::ranges::find(calls_, call.uuid, &ZRMCall::uuid);
    if (call.hasEnded) {
        if (found != calls_.end()) {
            calls_.erase(found);
        }
    } else if (found != calls_.end()) {
        *found = call;
    } else if (calls_.size() < kMostCalls) {
        calls_.push_back(call);
    } else {
        return false;
    }
    return true;
}

bool ZRMHostCalls::update(const ZRMCall& call) {
    ZRMHostObservers<ZRMCall>::Delivery delivery;
    {
        const ZRMLockGuard lock(mutex_);
        if (!apply(call)) {
            return false;
        }
        observers_.put(call, delivery);
    }
    delivery.post();
    return true;
}

std::vector<ZRMCall> ZRMHostCalls::calls() const {
    const ZRMLockGuard lock(mutex_);
    return calls_;
}

std::shared_ptr<ZRMSubscription> ZRMHostCalls::observe(std::shared_ptr<ZRMQueue> queue,
                                                       ZRMCalls::Callback callback) {
    const ZRMLockGuard lock(mutex_);
    return observers_.add(std::move(queue), std::move(callback));
}
