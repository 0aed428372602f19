// A numeric IPv4 or IPv6 address.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

struct ZRMLinuxIpAddress {
    bool isV6 = false;
    std::array<std::uint8_t, 16> room{};  // in network order; an IPv4 address takes the first 4

    // From "192.0.2.1" or "2001:db8::1"; absent for anything else.
    static std::optional<ZRMLinuxIpAddress> fromText(const std::string& text);

    [[nodiscard]] std::span<const std::uint8_t> bytes() const {
        return std::span(room).first(isV6 ? 16 : 4);
    }
    // 0.0.0.0 or ::, which stand for "anywhere".
    [[nodiscard]] bool isUnspecified() const;

    friend bool operator==(const ZRMLinuxIpAddress&, const ZRMLinuxIpAddress&) = default;
};

// ASCII letters made small, as host names compare.
std::string zrm_lowerHostName(std::string_view name);
