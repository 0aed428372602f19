// By which path a simulated device reaches its peers.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ZRMPlatform/Ports/ZRMReachabilityTarget.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedProcess.h"

class ZRMSimulatedReachabilityTarget;

// One flags word for every peer, unless a host has one of its own. Changes are delivered to the
// targets scheduled at that moment. Kept over restarts of the process. One thread.
class ZRMSimulatedReachability {
  public:
    // Absent: the flags cannot be read. Reachable at first.
    void setFlags(std::optional<std::uint32_t> flags);
    void setFlagsOfHost(const std::string& hostName, std::optional<std::uint32_t> flags);
    [[nodiscard]] std::optional<std::uint32_t> flagsOf(const std::string& hostName) const;

    // While set, no target can be made; callbacks are not taken; scheduling does not work.
    void setTargetsRefused(bool refused) { targetsRefused_ = refused; }
    void setCallbacksRefused(bool refused) { callbacksRefused_ = refused; }
    void setSchedulingRefused(bool refused) { schedulingRefused_ = refused; }
    [[nodiscard]] bool areTargetsRefused() const { return targetsRefused_; }
    [[nodiscard]] bool areCallbacksRefused() const { return callbacksRefused_; }
    [[nodiscard]] bool isSchedulingRefused() const { return schedulingRefused_; }

    // For targets.
    void enlist(const std::shared_ptr<ZRMSimulatedReachabilityTarget>& target);

  private:
    void deliverChanges();

    std::optional<std::uint32_t> flags_ = ZRMReachabilityReachable;
    std::map<std::string, std::optional<std::uint32_t>> flagsOfHosts_;
    std::vector<std::weak_ptr<ZRMSimulatedReachabilityTarget>> targets_;
    bool targetsRefused_ = false;
    bool callbacksRefused_ = false;
    bool schedulingRefused_ = false;
};

// No target is made for a host name that is empty or holds a NUL, or for an address that is not 16
// bytes of family 2 or 28 bytes of family 30 with its length in front.
class ZRMSimulatedReachabilityTargets final : public ZRMReachabilityTargets {
  public:
    ZRMSimulatedReachabilityTargets(std::shared_ptr<ZRMSimulatedReachability> reachability,
                                    std::shared_ptr<ZRMSimulatedProcess> process);

    std::shared_ptr<ZRMReachabilityTarget> targetForHost(const std::string& hostName) override;
    std::shared_ptr<ZRMReachabilityTarget> targetForAddress(
        const ZRMSocketAddress& address) override;

  private:
    std::shared_ptr<ZRMReachabilityTarget> makeTarget(const std::string& hostName);

    std::shared_ptr<ZRMSimulatedReachability> reachability_;
    std::shared_ptr<ZRMSimulatedProcess> process_;
};
