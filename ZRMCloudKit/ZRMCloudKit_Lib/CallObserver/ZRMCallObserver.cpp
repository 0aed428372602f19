#include "ZRMCloudKit/ZRMCloudKit_Lib/CallObserver/ZRMCallObserver.h"

#include <algorithm>
#include <utility>

std::shared_ptr<ZRMCallObserver> ZRMCallObserver::sharedInstance() {
    return observerForPlatform(*ZRMPlatform::current());
}

std::shared_ptr<ZRMCallObserver> ZRMCallObserver::observerForPlatform(const ZRMPlatform& platform) {
    return platform.instances->shared<ZRMCallObserver>([&platform] {
        return std::make_shared<ZRMCallObserver>(platform.calls, *platform.executor);
    });
}

ZRMCallObserver::ZRMCallObserver(std::shared_ptr<ZRMCalls> platformCalls, ZRMExecutor& executor)
    : platformCalls_(std::move(platformCalls)),
      dispatchQueue_(executor.makeSerialQueue(kDispatchQueueLabel, ZRMQualityOfService::Default)) {}

void ZRMCallObserver::setDelegate(std::weak_ptr<ZRMCallObserverDelegate> delegate) {
    const ZRMLockGuard lock(mutex_);
    delegate_.swap(delegate);
}

std::shared_ptr<ZRMCallObserverDelegate> ZRMCallObserver::delegate() const {
    const ZRMLockGuard lock(mutex_);
    return delegate_.lock();
}

void ZRMCallObserver::setEventPolicy(std::optional<ZRMCallInfoEventPolicy> policy) {
    const ZRMLockGuard lock(mutex_);
    eventPolicy_ = policy.value_or(ZRMCallInfoEventPolicy::defaultPolicy());
}

ZRMCallInfoEventPolicy ZRMCallObserver::eventPolicy() const {
    const ZRMLockGuard lock(mutex_);
    return eventPolicy_;
}

void ZRMCallObserver::start() {
    {
        const ZRMLockGuard lock(mutex_);
        if (cxCallObserver_) {
            return;
        }
        cxCallObserver_ = platformCalls_;
    }
    // Ahead of every update, which comes through the same queue only after the registration.
    dispatchQueue_->post([weak = weak_from_this(), underWay = platformCalls_->calls()] {
        if (const auto self = weak.lock()) {
            for (const auto& call : underWay) {
                self->handleCall(call, false);
            }
        }
    });
    auto subscription = platformCalls_->observeCalls(
        dispatchQueue_, [weak = weak_from_this()](const ZRMCall& call) {
            if (const auto self = weak.lock()) {
                self->handleCall(call, true);
            }
        });
    const ZRMLockGuard lock(mutex_);
    subscription_.swap(subscription);
}

std::vector<ZRMCall> ZRMCallObserver::calls() const {
    std::shared_ptr<ZRMCalls> observer;
    {
        const ZRMLockGuard lock(mutex_);
        observer = cxCallObserver_;
    }
    return observer ? observer->calls() : std::vector<ZRMCall>();
}

void ZRMCallObserver::handleCall(const ZRMCall& call, bool shouldNotify) {
    std::shared_ptr<ZRMCallObserverItem> item;
    if (call.uuid) {
        const auto found = connectedCalls_.find(*call.uuid);
        item = found != connectedCalls_.end() ? found->second : nullptr;
    }
    if (call.hasConnected) {
        const bool isNew = !item;
        const bool changed = isNew || item->call != call;
        if (isNew && call.uuid) {
            item = std::make_shared<ZRMCallObserverItem>();
            item->activeStateCheckCount = eventPolicy().activeStateCheckCount();
            connectedCalls_.emplace(*call.uuid, item);
        }
        if (item) {
            item->call = call;
        }
        if (isNew) {
            scheduleActiveStateCheckForItem(item);
        }
        const auto receiver = shouldNotify && changed ? delegate() : nullptr;
        if (receiver) {
            receiver->connectedCallChanged(*this, call);
        }
    }
    if (call.hasEnded && item) {
        cancelActiveStateCheckForItem(*item);
        connectedCalls_.erase(*call.uuid);
    }
}

void ZRMCallObserver::scheduleActiveStateCheckForItem(
    const std::shared_ptr<ZRMCallObserverItem>& item) {
    if (!item) {
        return;
    }
    item->activeStateCheckBlock =
        dispatchQueue_->postAfter(eventPolicy().activeStateCheckInterval(),
                                  [weak = weak_from_this(), weakItem = std::weak_ptr(item)] {
                                      const auto self = weak.lock();
                                      const auto followed = weakItem.lock();
                                      if (self && followed) {
                                          self->performActiveStateCheck(followed);
                                      }
                                  });
    // A policy's count of 0 wraps: checks without end.
    --item->activeStateCheckCount;
}

// A check that was cancelled never comes here, because it was cancelled on this queue; whoever
// cancels it also stops following the call.
void ZRMCallObserver::performActiveStateCheck(const std::shared_ptr<ZRMCallObserverItem>& item) {
    const auto uuid = item->callUUID();
    if (!uuid || !item->activeStateCheckBlock) {
        return;
    }
    checkActiveCallWithUUID(*uuid);
    if (item->activeStateCheckCount == 0) {
        connectedCalls_.erase(*uuid);
    } else {
        scheduleActiveStateCheckForItem(item);
    }
}

void ZRMCallObserver::checkActiveCallWithUUID(const std::string& uuid) {
    const auto current = calls();
    const auto found =
        std::ranges::find_if(current, [&uuid](const ZRMCall& call) { return call.uuid == uuid; });
    if (found == current.end() || !found->hasConnected || found->hasEnded) {
        return;
    }
    if (const auto receiver = delegate()) {
        receiver->connectedCallStillActive(*this, *found);
    }
}

void ZRMCallObserver::cancelActiveStateCheckForItem(ZRMCallObserverItem& item) {
    if (item.activeStateCheckBlock) {
        item.activeStateCheckBlock->cancel();
        item.activeStateCheckBlock = nullptr;
    }
}
