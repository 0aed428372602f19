#include "ZRMPlatform/Simulated/ZRMSimulatedReachability.h"

#include <utility>

#include "ZRMPlatform/Simulated/ZRMSimulatedReachabilityTarget.h"

void ZRMSimulatedReachability::setFlags(std::optional<std::uint32_t> flags) {
    flags_ = flags;
    deliverChanges();
}

void ZRMSimulatedReachability::setFlagsOfHost(const std::string& hostName,
                                              std::optional<std::uint32_t> flags) {
    flagsOfHosts_[hostName] = flags;
    deliverChanges();
}

std::optional<std::uint32_t> ZRMSimulatedReachability::flagsOf(const std::string& hostName) const {
    const auto found = flagsOfHosts_.find(hostName);
    return found != flagsOfHosts_.end() ? found->second : flags_;
}

void ZRMSimulatedReachability::enlist(
    const std::shared_ptr<ZRMSimulatedReachabilityTarget>& target) {
    std::erase_if(targets_, [](const auto& entry) { return entry.expired(); });
    targets_.push_back(target);
}

void ZRMSimulatedReachability::deliverChanges() {
    const auto targets = targets_;
    for (const auto& entry : targets) {
        if (const auto target = entry.lock()) {
            target->deliverChange();
        }
    }
}

ZRMSimulatedReachabilityTargets::ZRMSimulatedReachabilityTargets(
    std::shared_ptr<ZRMSimulatedReachability> reachability,
    std::shared_ptr<ZRMSimulatedProcess> process)
    : reachability_(std::move(reachability)), process_(std::move(process)) {}

std::shared_ptr<ZRMReachabilityTarget> ZRMSimulatedReachabilityTargets::makeTarget(
    const std::string& hostName) {
    if (reachability_->areTargetsRefused()) {
        return nullptr;
    }
    auto target =
        std::make_shared<ZRMSimulatedReachabilityTarget>(reachability_, process_, hostName);
    reachability_->enlist(target);
    return target;
}

std::shared_ptr<ZRMReachabilityTarget> ZRMSimulatedReachabilityTargets::targetForHost(
    const std::string& hostName) {
    const bool isName = !hostName.empty() && hostName.find('\0') == std::string::npos;
    return isName ? makeTarget(hostName) : nullptr;
}

std::shared_ptr<ZRMReachabilityTarget> ZRMSimulatedReachabilityTargets::targetForAddress(
    const ZRMSocketAddress& address) {
    constexpr std::uint8_t kIPv4Family = 2;
    constexpr std::uint8_t kIPv6Family = 30;
    const bool sound = address.size() >= 2 && address[0] == address.size() &&
                       ((address[1] == kIPv4Family && address.size() == 16) ||
                        (address[1] == kIPv6Family && address.size() == 28));
    return sound ? makeTarget({}) : nullptr;
}
