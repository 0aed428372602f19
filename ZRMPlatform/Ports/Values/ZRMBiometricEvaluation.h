// Whether the user could be recognised by biometry now.
#pragma once

#include <cstdint>
#include <optional>

#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"

// The domain of the errors that the authentication service itself gives.
inline constexpr const char* kZRMLocalAuthenticationErrorDomain = "com.apple.LocalAuthentication";

// Codes in that domain.
enum ZRMLocalAuthenticationErrorCode : std::int64_t {
    ZRMLocalAuthenticationErrorBiometryNotAvailable = -6,  // the device has no such sensor
    ZRMLocalAuthenticationErrorBiometryNotEnrolled = -7,
    ZRMLocalAuthenticationErrorBiometryLockout = -8,
};

struct ZRMBiometricEvaluation {
    bool canEvaluate = false;
    // Changes whenever the enrolled fingers or faces do; only where it can be evaluated.
    std::optional<ZRMData> domainState;
    // Why it cannot be evaluated.
    std::optional<ZRMError> error;
};
