// When a URL request is repeated, and after which delay. Pure functions.
#pragma once

#include <optional>

#include "ZRMPlatform/Ports/Values/ZRMError.h"

// Whether a retriable request is repeated after an attempt that ended with this status (0 without a
// response) and transport error. `retryTimeoutSeconds` is the delay before that attempt: once it
// has reached `maxRetryIntervalSeconds`, that attempt was the last.
[[nodiscard]] bool zrm_shouldRetryForHTTPStatusCode(int statusCode,
                                                    const std::optional<ZRMError>& error,
                                                    double retryTimeoutSeconds,
                                                    double maxRetryIntervalSeconds);

// The delay before the next attempt: twice the last one, at most `maxRetryIntervalSeconds`.
[[nodiscard]] double zrm_calculateRetryTimeout(double retryTimeoutSeconds,
                                               double maxRetryIntervalSeconds);

struct ZRMUrlRetryIntervals {
    double minSeconds;
    double maxSeconds;
};

// The intervals as they are, unless doubling the first would never reach the second (one of them is
// no number, or a minimum of 0 or less that is not the maximum): then 1 and 86400 seconds stand in.
[[nodiscard]] ZRMUrlRetryIntervals zrm_usableRetryIntervals(double minSeconds, double maxSeconds);
