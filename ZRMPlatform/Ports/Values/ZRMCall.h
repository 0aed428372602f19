// A telephone or internet call, as the system knows it at one moment.
#pragma once

#include <optional>
#include <string>

struct ZRMCall {
    std::optional<std::string> uuid;  // the same for the whole life of the call
    bool hasConnected = false;
    bool hasEnded = false;
    bool isOutgoing = false;
    bool isOnHold = false;

    friend bool operator==(const ZRMCall&, const ZRMCall&) = default;
};
