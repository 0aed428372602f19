// Watches whether a VPN is connected.
#pragma once

#include <functional>

class ZRMVpnDetecting {
  public:
    virtual ~ZRMVpnDetecting() = default;
    // As last checked; the first check is made at construction.
    [[nodiscard]] virtual bool isVpnConnected() const = 0;
    // Once. Calls back with each new state from now on, on the thread that checked.
    virtual void startDetection(std::function<void(bool connected)> completionHandler) = 0;
};
