#include "ZRMPlatform/Linux/ZRMLinuxIpAddress.h"

#include <algorithm>

#include <arpa/inet.h>

std::optional<ZRMLinuxIpAddress> ZRMLinuxIpAddress::fromText(const std::string& text) {
    if (text.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    ZRMLinuxIpAddress address;
    if (::inet_pton(AF_INET, text.c_str(), address.room.data()) == 1) {
        return address;
    }
    address.isV6 = true;
    if (::inet_pton(AF_INET6, text.c_str(), address.room.data()) == 1) {
        return address;
    }
    return std::nullopt;
}

bool ZRMLinuxIpAddress::isUnspecified() const {
    return std::ranges::all_of(bytes(), [](std::uint8_t byte) { return byte == 0; });
}

std::string zrm_lowerHostName(std::string_view name) {
    std::string lowered(name);
    for (auto& character : lowered) {
        if (character >= 'A' && character <= 'Z') {
            character = static_cast<char>(character + ('a' - 'A'));
        }
    }
    return lowered;
}
