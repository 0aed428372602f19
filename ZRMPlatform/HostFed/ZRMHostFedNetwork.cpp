#include "ZRMPlatform/HostFed/ZRMHostFedNetwork.h"

#include <algorithm>

std::optional<std::vector<std::string>> ZRMHostFedNetworkInterfaces::scopedInterfaceNames() const {
    auto names = machine_->scopedInterfaceNames();
    const auto tunnels = signals_->tunnels.word().value_or(std::vector<std::string>());
    if (!names && tunnels.empty()) {
        return std::nullopt;
    }
    auto joined = std::move(names).value_or(std::vector<std::string>());
    for (const auto& tunnel : tunnels) {
        if (std::ranges::find(joined, tunnel) == joined.end()) {
            joined.push_back(tunnel);
        }
    }
    return joined;
}
