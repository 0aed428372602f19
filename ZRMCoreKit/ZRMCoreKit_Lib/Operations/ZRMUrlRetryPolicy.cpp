#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMUrlRetryPolicy.h"

#include <algorithm>
#include <cmath>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMUrlRequestOperation.h"
#include "ZRMPlatform/Ports/ZRMUrlSession.h"

namespace {

constexpr int kFirstServerErrorStatus = 500;

bool isPassingTransportError(const ZRMError& error) {
    if (error.domain() != kZRMUrlErrorDomain) {
        return false;
    }
    switch (error.code()) {
        case ZRMUrlErrorTimedOut:
        case ZRMUrlErrorNotConnectedToInternet:
        case ZRMUrlErrorCannotConnectToHost:
        case ZRMUrlErrorNetworkConnectionLost:
            return true;
        default:
            return false;
    }
}

}  // namespace

bool zrm_shouldRetryForHTTPStatusCode(int statusCode, const std::optional<ZRMError>& error,
                                      double retryTimeoutSeconds, double maxRetryIntervalSeconds) {
    if (retryTimeoutSeconds == maxRetryIntervalSeconds) {
        return false;
    }
    return statusCode >= kFirstServerErrorStatus || (error && isPassingTransportError(*error));
}

double zrm_calculateRetryTimeout(double retryTimeoutSeconds, double maxRetryIntervalSeconds) {
    return std::min(2 * retryTimeoutSeconds, maxRetryIntervalSeconds);
}

ZRMUrlRetryIntervals zrm_usableRetryIntervals(double minSeconds, double maxSeconds) {
    const bool isReachable = minSeconds > 0 ? std::isfinite(maxSeconds) : minSeconds == maxSeconds;
    if (isReachable) {
        return {minSeconds, maxSeconds};
    }
    return {ZRMUrlRequestOperation::kMinRetryIntervalSeconds,
            ZRMUrlRequestOperation::kMaxRetryIntervalSeconds};
}
