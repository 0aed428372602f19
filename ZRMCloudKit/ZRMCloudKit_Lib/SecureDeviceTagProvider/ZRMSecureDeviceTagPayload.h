// What the server's answer to a request for a device tag says.
#pragma once

#include <string>
#include <string_view>

#include "ZRMPlatform/Ports/Values/ZRMResult.h"

struct ZRMSecureDeviceTagPayload {
    std::string tag;             // upper case; not empty, without control characters
    double refreshInterval = 0;  // seconds, 0 or more

    // From the payload of a JWS object, as it travels. Refused, with a reason, where it is no JSON
    // object, repeats a name, or lacks a "uuid" or an "i" that could be used. Pure.
    static ZRMResult<ZRMSecureDeviceTagPayload> fromJwsPayload(std::string_view payload);

    friend bool operator==(const ZRMSecureDeviceTagPayload&,
                           const ZRMSecureDeviceTagPayload&) = default;
};
