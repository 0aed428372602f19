#include "ZRMPlatform/Linux/ZRMLinuxResolveOverrides.h"

#include <algorithm>

#include "ZRMPlatform/Linux/ZRMLinuxConsoleLog.h"
#include "ZRMPlatform/Linux/ZRMLinuxIpAddress.h"

namespace {

bool isPort(std::string_view text) {
    return !text.empty() && text.size() <= 5 &&
           std::ranges::all_of(text, [](char digit) { return digit >= '0' && digit <= '9'; }) &&
           std::stoi(std::string(text)) <= 65535;
}

}  // namespace

std::optional<ZRMLinuxResolveOverride> zrm_parseResolveOverride(std::string_view text) {
    const auto hostEnd = text.find(':');
    const auto portEnd = hostEnd == std::string_view::npos ? hostEnd : text.find(':', hostEnd + 1);
    if (hostEnd == 0 || portEnd == std::string_view::npos) {
        return std::nullopt;
    }
    const auto port = text.substr(hostEnd + 1, portEnd - hostEnd - 1);
    auto address = text.substr(portEnd + 1);
    auto toPort = port;
    const bool isBracketed = address.starts_with('[');
    const auto colons = std::ranges::count(address, ':');
    if (isBracketed ? !address.ends_with(']') : colons == 1) {
        const auto end = address.rfind(':');
        toPort = address.substr(end == std::string_view::npos ? address.size() : end + 1);
        address = address.substr(0, end);
    }
    if (address.starts_with('[') && address.ends_with(']')) {
        address = address.substr(1, address.size() - 2);
    }
    if (!isPort(port) || !isPort(toPort) || !ZRMLinuxIpAddress::fromText(std::string(address))) {
        return std::nullopt;
    }
    return ZRMLinuxResolveOverride{zrm_lowerHostName(text.substr(0, hostEnd)), std::string(port),
                                   std::string(address), std::string(toPort)};
}

std::vector<ZRMLinuxResolveOverride> zrm_parseResolveOverrides(
    const std::vector<std::string>& texts) {
    std::vector<ZRMLinuxResolveOverride> overrides;
    for (const auto& text : texts) {
        if (auto parsed = zrm_parseResolveOverride(text)) {
            overrides.push_back(std::move(*parsed));
        } else {
            zrm_writeToConsole("Not a HOST:PORT:ADDRESS[:PORT] override: " + text + "\n");
        }
    }
    return overrides;
}
