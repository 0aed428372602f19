#include "ZRMPlatform/Linux/ZRMLinuxReachability.h"

#include <algorithm>

#include "ZRMPlatform/Linux/ZRMLinuxReachabilityTarget.h"

namespace {

constexpr std::uint8_t kInternetFamily = 2;
constexpr std::size_t kInternetBytes = 16;
constexpr std::size_t kInternetOffset = 4;
constexpr std::uint8_t kInternet6Family = 30;
constexpr std::size_t kInternet6Bytes = 28;
constexpr std::size_t kInternet6Offset = 8;

std::optional<ZRMLinuxIpAddress> addressIn(const ZRMSocketAddress& bytes) {
    if (bytes.size() < 2 || bytes[0] > bytes.size()) {
        return std::nullopt;
    }
    ZRMLinuxIpAddress address;
    if (bytes[1] == kInternetFamily && bytes[0] >= kInternetBytes) {
        std::copy_n(bytes.begin() + kInternetOffset, 4, address.room.begin());
        return address;
    }
    if (bytes[1] == kInternet6Family && bytes[0] >= kInternet6Bytes) {
        address.isV6 = true;
        std::copy_n(bytes.begin() + kInternet6Offset, 16, address.room.begin());
        return address;
    }
    return std::nullopt;
}

}  // namespace

ZRMLinuxReachabilityTargets::ZRMLinuxReachabilityTargets(
    std::shared_ptr<const ZRMLinuxRoutes> routes, std::shared_ptr<ZRMLinuxRouteChanges> changes,
    ZRMLinuxInterfaces interfaces, std::vector<ZRMLinuxResolveOverride> overrides)
    : routes_(std::move(routes)),
      changes_(std::move(changes)),
      interfaces_(std::move(interfaces)),
      overrides_(std::move(overrides)) {}

std::shared_ptr<ZRMReachabilityTarget> ZRMLinuxReachabilityTargets::targetForHost(
    const std::string& hostName) {
    if (hostName.empty() || hostName.find('\0') != std::string::npos) {
        return nullptr;
    }
    const auto name = zrm_lowerHostName(hostName);
    const auto found = std::ranges::find(overrides_, name, &ZRMLinuxResolveOverride::host);
    const auto address = found != overrides_.end() ? found->address : name;
    return targetFor(ZRMLinuxIpAddress::fromText(address == "localhost" ? "127.0.0.1" : address));
}

std::shared_ptr<ZRMReachabilityTarget> ZRMLinuxReachabilityTargets::targetForAddress(
    const ZRMSocketAddress& address) {
    const auto parsed = addressIn(address);
    return parsed ? targetFor(parsed) : nullptr;
}

std::shared_ptr<ZRMReachabilityTarget> ZRMLinuxReachabilityTargets::targetFor(
    std::optional<ZRMLinuxIpAddress> address) {
    if (address && address->isUnspecified()) {
        address.reset();
    }
    return std::make_shared<ZRMLinuxReachabilityTarget>(address, routes_, changes_, interfaces_);
}
