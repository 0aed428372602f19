// Word of changes in the machine's links, addresses and routes.
#pragma once

#include <memory>
#include <vector>

#include "ZRMPlatform/Ports/ZRMMutex.h"

class ZRMLinuxRouteListener {
  public:
    virtual ~ZRMLinuxRouteListener() = default;
    // On the source's thread; must not block. One call may stand for many changes.
    virtual void routesChanged() = 0;
};

// May be called from any thread.
class ZRMLinuxRouteChanges {
  public:
    virtual ~ZRMLinuxRouteChanges() = default;
    // Until the listener is gone. False when changes cannot be watched.
    virtual bool addListener(const std::shared_ptr<ZRMLinuxRouteListener>& listener) = 0;
};

// Listens on rtnetlink, on a thread that starts with the first listener and lives as long as the
// process. There is one for the process.
class ZRMLinuxKernelRouteChanges : public ZRMLinuxRouteChanges {
  public:
    static std::shared_ptr<ZRMLinuxKernelRouteChanges> shared();

    bool addListener(const std::shared_ptr<ZRMLinuxRouteListener>& listener) override;

  private:
    bool start();
    void serve(int socket);
    void notifyAll();

    ZRMMutex mutex_;
    std::vector<std::weak_ptr<ZRMLinuxRouteListener>> listeners_ ZRM_GUARDED_BY(mutex_);
    bool isStarted_ ZRM_GUARDED_BY(mutex_) = false;
};
