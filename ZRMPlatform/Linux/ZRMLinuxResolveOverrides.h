// Host names that are taken to lie at given addresses.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// One override, parsed: which name and port, and the numeric IPv4 or IPv6 address and the port to
// take instead.
struct ZRMLinuxResolveOverride {
    std::string host;     // lower case
    std::string port;     // decimal digits
    std::string address;  // without brackets
    std::string toPort;   // decimal digits

    friend bool operator==(const ZRMLinuxResolveOverride&,
                           const ZRMLinuxResolveOverride&) = default;
};

// From "HOST:PORT:ADDRESS" or "HOST:PORT:ADDRESS:PORT"; an IPv6 address may stand in brackets, and
// must before a port. Absent when it is not that.
std::optional<ZRMLinuxResolveOverride> zrm_parseResolveOverride(std::string_view text);

// Every override that parses; one that does not is named on the console and left out.
std::vector<ZRMLinuxResolveOverride> zrm_parseResolveOverrides(
    const std::vector<std::string>& texts);
