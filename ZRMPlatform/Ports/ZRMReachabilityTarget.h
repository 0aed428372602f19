// Whether, and by which kind of path, a peer can be reached.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ZRMPlatform/Ports/ZRMQueue.h"

// Bits of the flags word.
enum ZRMReachabilityFlags : std::uint32_t {
    ZRMReachabilityReachable = 0x2,
    ZRMReachabilityConnectionRequired = 0x4,
    ZRMReachabilityConnectionOnTraffic = 0x8,
    ZRMReachabilityInterventionRequired = 0x10,
    ZRMReachabilityConnectionOnDemand = 0x20,
    ZRMReachabilityIsCellular = 0x40000,
};

// The bytes of a BSD socket address: length, family, then the family's own fields.
using ZRMSocketAddress = std::vector<std::uint8_t>;

// May be called from any thread.
class ZRMReachabilityTarget {
  public:
    using Callback = std::function<void(std::uint32_t flags)>;

    virtual ~ZRMReachabilityTarget() = default;
    // Never blocks; absent when the flags cannot be read.
    [[nodiscard]] virtual std::optional<std::uint32_t> flags() const = 0;
    // Replaces the callback; an empty one removes it. False when it cannot be registered.
    virtual bool setCallback(Callback callback) = 0;
    // Delivers changes of the flags to the callback, on that queue; false when it cannot.
    virtual bool schedule(const std::shared_ptr<ZRMQueue>& queue) = 0;
    // Ends deliveries on that queue. Called on the queue itself, none follows.
    virtual bool unschedule(const std::shared_ptr<ZRMQueue>& queue) = 0;
};

class ZRMReachabilityTargets {
  public:
    virtual ~ZRMReachabilityTargets() = default;
    // Absent when no target can be made for it.
    virtual std::shared_ptr<ZRMReachabilityTarget> targetForHost(const std::string& hostName) = 0;
    virtual std::shared_ptr<ZRMReachabilityTarget> targetForAddress(
        const ZRMSocketAddress& address) = 0;
};
