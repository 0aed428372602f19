// Follows connected calls: tells of each when it is first seen or changes, and again, after a
// while, whether it is still active.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CallObserver/ZRMCallObserverItem.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Detectors/ZRMCallObserving.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

// Owned by a shared pointer. The calls that are followed belong to the serial queue: updates,
// checks and the calls found at the start are all handled there, one after another and without a
// lock. There is no stop.
//
// A call that has no UUID cannot be known again: each update of it counts as a new call's, and it
// is neither followed nor looked at later.
class ZRMCallObserver final : public ZRMCallObserving,
                              public std::enable_shared_from_this<ZRMCallObserver> {
  public:
    static constexpr const char* kDispatchQueueLabel = "com.velorin.zrm.callobserver.dispatch";

    // The one of the installed platform, and of that platform.
    static std::shared_ptr<ZRMCallObserver> sharedInstance();
    static std::shared_ptr<ZRMCallObserver> observerForPlatform(const ZRMPlatform& platform);

    ZRMCallObserver(std::shared_ptr<ZRMCalls> platformCalls, ZRMExecutor& executor);

    void setDelegate(std::weak_ptr<ZRMCallObserverDelegate> delegate) override;
    // For calls seen and checks arranged from now on. None means the default policy.
    void setEventPolicy(std::optional<ZRMCallInfoEventPolicy> policy) override;
    [[nodiscard]] ZRMCallInfoEventPolicy eventPolicy() const;
    // Calls under way are followed without being reported as changed.
    void start() override;
    [[nodiscard]] std::vector<ZRMCall> calls() const override;

  private:
    void handleCall(const ZRMCall& call, bool shouldNotify);
    void scheduleActiveStateCheckForItem(const std::shared_ptr<ZRMCallObserverItem>& item);
    void performActiveStateCheck(const std::shared_ptr<ZRMCallObserverItem>& item);
    void checkActiveCallWithUUID(const std::string& uuid);
    static void cancelActiveStateCheckForItem(ZRMCallObserverItem& item);
    [[nodiscard]] std::shared_ptr<ZRMCallObserverDelegate> delegate() const;

    const std::shared_ptr<ZRMCalls> platformCalls_;
    const std::shared_ptr<ZRMQueue> dispatchQueue_;
    std::unordered_map<std::string, std::shared_ptr<ZRMCallObserverItem>> connectedCalls_;

    mutable ZRMMutex mutex_;  // guards what follows; never held while calling out
    std::weak_ptr<ZRMCallObserverDelegate> delegate_ ZRM_GUARDED_BY(mutex_);
    ZRMCallInfoEventPolicy eventPolicy_ ZRM_GUARDED_BY(mutex_) =
        ZRMCallInfoEventPolicy::defaultPolicy();
    std::shared_ptr<ZRMCalls> cxCallObserver_ ZRM_GUARDED_BY(mutex_);  // none until start()
    std::shared_ptr<ZRMSubscription> subscription_ ZRM_GUARDED_BY(mutex_);
};
