#include "ZRMPlatform/Linux/ZRMLinuxReachabilityTarget.h"

#include <algorithm>

ZRMLinuxReachabilityTarget::ZRMLinuxReachabilityTarget(
    std::optional<ZRMLinuxIpAddress> address, std::shared_ptr<const ZRMLinuxRoutes> routes,
    std::shared_ptr<ZRMLinuxRouteChanges> changes, ZRMLinuxInterfaces interfaces)
    : address_(address),
      routes_(std::move(routes)),
      changes_(std::move(changes)),
      interfaces_(std::move(interfaces)) {}

std::optional<std::uint32_t> ZRMLinuxReachabilityTarget::flags() const {
    const auto leavingBy =
        address_ ? routes_->interfaceToward(*address_) : routes_->interfaceOfDefaultRoute();
    if (!leavingBy) {
        return std::nullopt;
    }
    if (*leavingBy == 0) {
        return 0;
    }
    const auto interface = interfaces_.withIndex(*leavingBy);
    const bool isCellular = interface && interface->isCellular;
    return ZRMReachabilityReachable | (isCellular ? ZRMReachabilityIsCellular : 0U);
}

bool ZRMLinuxReachabilityTarget::setCallback(Callback callback) {
    auto next = callback ? std::make_shared<const Callback>(std::move(callback)) : nullptr;
    const ZRMLockGuard lock(mutex_);
    callback_.swap(next);  // the one before is released after the lock
    return true;
}

bool ZRMLinuxReachabilityTarget::schedule(const std::shared_ptr<ZRMQueue>& queue) {
    if (!queue) {
        return false;
    }
    const auto now = flags();
    const ZRMLockGuard lock(mutex_);
    if (!isListening_) {
        isListening_ = changes_->addListener(shared_from_this());
        if (!isListening_) {
            return false;
        }
    }
    if (queues_.empty()) {
        lastFlags_ = now;
    }
    if (std::ranges::find(queues_, queue) == queues_.end()) {
        queues_.push_back(queue);
    }
    return true;
}

bool ZRMLinuxReachabilityTarget::unschedule(const std::shared_ptr<ZRMQueue>& queue) {
    const ZRMLockGuard lock(mutex_);
    return std::erase(queues_, queue) > 0;
}

void ZRMLinuxReachabilityTarget::routesChanged() {
    const auto now = flags();
    std::vector<std::shared_ptr<ZRMQueue>> queues;
    {
        const ZRMLockGuard lock(mutex_);
        if (now == lastFlags_) {
            return;
        }
        lastFlags_ = now;
        queues = queues_;
    }
    for (const auto& queue : queues) {
        queue->post([weak = weak_from_this(), watched = std::weak_ptr(queue), now] {
            const auto self = weak.lock();
            const auto onto = watched.lock();
            if (self && onto) {
                self->deliver(onto, now.value_or(0));
            }
        });
    }
}

void ZRMLinuxReachabilityTarget::deliver(const std::shared_ptr<ZRMQueue>& queue,
                                         std::uint32_t flags) {
    std::shared_ptr<const Callback> callback;
    {
        const ZRMLockGuard lock(mutex_);
        if (std::ranges::find(queues_, queue) != queues_.end()) {
            callback = callback_;
        }
    }
    if (callback) {
        (*callback)(flags);
    }
}
