// The codes of the errors whose domain is kZRMMobileKitErrorDomain.
#pragma once

#include <cstdint>

enum ZRMMobileKitErrorCode : std::int64_t {
    // The library does not produce it.
    ZRMMobileKitErrorUnknown = 0,
    // A stored settings document cannot be read; the service stays inactive. Activate again later.
    ZRMMobileKitErrorSettingsInvalidFormat = 1,
    // The library does not produce it.
    ZRMMobileKitErrorCannotStartInternalService = 2,
    // The service is not activated. Wait for the activation's handler, then repeat the call.
    ZRMMobileKitErrorServiceNotReady = 3,
    // The library does not produce these three.
    ZRMMobileKitErrorUntrustedCertificate = 4,
    ZRMMobileKitErrorInvalidCertificate = 5,
    ZRMMobileKitErrorSettingsSignatureNotFound = 6,
    // A field of the settings' signature has the wrong form.
    ZRMMobileKitErrorSettingsSignatureInvalidFormat = 7,
    // The configuration's statistics URL is no HTTP URL. Correct it and make a new service.
    ZRMMobileKitErrorInvalidUrl = 8,
    // The user identifier or the user name is refused; nothing was sent.
    ZRMMobileKitErrorInvalidLogin = 9,
    // The navigation point is refused; nothing was sent.
    ZRMMobileKitErrorInvalidUINavigationPoint = 10,
    // The session identifier is refused; nothing was sent.
    ZRMMobileKitErrorInvalidSessionId = 11,
    // The settings switch this event off; nothing was sent. No action is needed.
    ZRMMobileKitErrorEventDisabled = 12,
};
