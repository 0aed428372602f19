#include "ZRMPlatform/Simulated/ZRMSimulatedReachabilityTarget.h"

#include <algorithm>
#include <utility>

ZRMSimulatedReachabilityTarget::ZRMSimulatedReachabilityTarget(
    std::shared_ptr<ZRMSimulatedReachability> reachability,
    std::shared_ptr<ZRMSimulatedProcess> process, std::string hostName)
    : reachability_(std::move(reachability)),
      process_(std::move(process)),
      hostName_(std::move(hostName)) {}

std::optional<std::uint32_t> ZRMSimulatedReachabilityTarget::flags() const {
    return reachability_->flagsOf(hostName_);
}

bool ZRMSimulatedReachabilityTarget::setCallback(Callback callback) {
    if (callback && reachability_->areCallbacksRefused()) {
        return false;
    }
    callback_ = std::move(callback);
    return true;
}

bool ZRMSimulatedReachabilityTarget::schedule(const std::shared_ptr<ZRMQueue>& queue) {
    if (!queue || reachability_->isSchedulingRefused()) {
        return false;
    }
    if (queues_.empty()) {
        lastFlags_ = flags();
    }
    if (!isScheduledOn(queue)) {
        queues_.push_back(queue);
    }
    return true;
}

bool ZRMSimulatedReachabilityTarget::unschedule(const std::shared_ptr<ZRMQueue>& queue) {
    return std::erase(queues_, queue) > 0;
}

bool ZRMSimulatedReachabilityTarget::isScheduledOn(const std::shared_ptr<ZRMQueue>& queue) const {
    return std::ranges::find(queues_, queue) != queues_.end();
}

void ZRMSimulatedReachabilityTarget::deliverChange() {
    const auto now = flags();
    if (now == lastFlags_ || !process_->isAlive()) {
        return;
    }
    lastFlags_ = now;
    for (const auto& queue : queues_) {
        queue->post([weak = weak_from_this(), onto = std::weak_ptr(queue), now] {
            const auto self = weak.lock();
            const auto scheduled = onto.lock();
            if (self && scheduled && self->isScheduledOn(scheduled) && self->callback_) {
                const Callback callback = self->callback_;
                callback(now.value_or(0));
            }
        });
    }
}
