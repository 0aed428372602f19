// The cellular operator of one subscription, as the telephony service knows it.
#pragma once

#include <optional>
#include <string>

// Without a SIM card the service may report placeholders, "--" and "65535".
struct ZRMCarrier {
    bool allowsVoip = false;
    std::optional<std::string> isoCountryCode;
    std::optional<std::string> mobileCountryCode;
    std::optional<std::string> mobileNetworkCode;
    std::optional<std::string> name;

    friend bool operator==(const ZRMCarrier&, const ZRMCarrier&) = default;
};
