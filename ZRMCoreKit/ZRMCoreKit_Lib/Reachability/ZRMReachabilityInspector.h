// Watches whether a host or the Internet is reachable, and how, and tells observers of changes.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Observers/ZRMObserversCollection.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Reachability/ZRMNetworkStatus.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/RunLoop/ZRMRunLoop.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

class ZRMReachabilityInspector;

class ZRMReachabilityInspectorObserver {
  public:
    virtual ~ZRMReachabilityInspectorObserver() = default;
    // On the run loop that the inspector's notifier was started with.
    virtual void inspector(ZRMReachabilityInspector& inspector,
                           ZRMNetworkStatus didChangeStatus) = 0;
};

// What a reachability callback is registered with.
class ZRMReachabilityContext {
  public:
    virtual ~ZRMReachabilityContext() = default;
};

// Tells the observers of the inspector behind `info` the status of this moment, whatever `flags`
// say. Throws ZRMAssertionFailure when `info` is absent or no inspector.
void ZRMReachabilityCallback(std::uint32_t flags, ZRMReachabilityContext* info);

// Owned by shared_ptr. May be used from any thread. Dropping the inspector stops its notifier.
class ZRMReachabilityInspector final
    : public ZRMReachabilityContext,
      public std::enable_shared_from_this<ZRMReachabilityInspector> {
  public:
    // Never absent: where the platform makes no target, the console says so and the inspector
    // answers "not reachable".
    static std::shared_ptr<ZRMReachabilityInspector> inspectorWithHostName(
        const std::shared_ptr<const ZRMPlatform>& platform, const std::string& hostName);
    static std::shared_ptr<ZRMReachabilityInspector> inspectorWithAddress(
        const std::shared_ptr<const ZRMPlatform>& platform, const ZRMSocketAddress& socketAddress);
    static std::shared_ptr<ZRMReachabilityInspector> inspectorForInternetConnection(
        const std::shared_ptr<const ZRMPlatform>& platform);

    // The target may be absent.
    ZRMReachabilityInspector(std::shared_ptr<ZRMReachabilityTarget> reachabilityRef,
                             std::shared_ptr<ZRMExecutor> executor,
                             std::shared_ptr<ZRMConsoleLog> consoleLog);
    ~ZRMReachabilityInspector() override;
    ZRMReachabilityInspector(const ZRMReachabilityInspector&) = delete;
    ZRMReachabilityInspector& operator=(const ZRMReachabilityInspector&) = delete;

    // From a word of ZRMReachabilityFlags bits.
    [[nodiscard]] static ZRMNetworkStatus networkStatusForFlags(std::uint32_t flags);

    // False when the flags cannot be read.
    [[nodiscard]] bool connectionRequired() const;
    // NotReachable when the flags cannot be read.
    [[nodiscard]] ZRMNetworkStatus currentReachabilityStatus() const;

    // Kept weakly. Not from inside a notification.
    void addObserver(const std::shared_ptr<ZRMReachabilityInspectorObserver>& observer);
    void removeObserver(const ZRMReachabilityInspectorObserver* observer);

    [[nodiscard]] bool isNotifierStarted() const;
    // On the current run loop.
    bool startNotifier();
    // Absent means the current run loop. False when the platform refuses. Started already, the
    // console says so and the registration is repeated.
    bool startNotifierWithRunLoop(std::shared_ptr<ZRMRunLoop> runLoop);
    // Nothing happens when it is not started.
    void stopNotifier();

    // Ends the target's deliveries on the loop; what is missing of the two is told on the console.
    static void unschedule(ZRMConsoleLog& consoleLog, ZRMReachabilityTarget* target,
                           const ZRMRunLoop* runLoop);

  private:
    friend void ZRMReachabilityCallback(std::uint32_t flags, ZRMReachabilityContext* info);

    void notifyObservers();

    const std::shared_ptr<ZRMReachabilityTarget> reachabilityRef_;
    const std::shared_ptr<ZRMExecutor> executor_;
    const std::shared_ptr<ZRMConsoleLog> consoleLog_;
    ZRMObserversCollection<ZRMReachabilityInspectorObserver> observers_;
    mutable ZRMMutex mutex_;  // guards what follows
    std::shared_ptr<ZRMRunLoop> runLoop_ ZRM_GUARDED_BY(mutex_);
};
