#include "ZRMPlatform/Simulated/ZRMSimulatedTransfer.h"

#include <algorithm>
#include <utility>

namespace {

double timeout(double seconds) {
    constexpr double kUsualSeconds = 60;
    return seconds > 0 ? seconds : kUsualSeconds;
}

}  // namespace

ZRMSimulatedTransfer::ZRMSimulatedTransfer(ZRMSimulatedAnswer answer,
                                           const ZRMUrlSessionConfiguration& configuration)
    : answer_(std::move(answer)),
      endSeconds_(answer_.delaySeconds),
      errorAtEnd_(answer_.errorCode) {
    const double patience = timeout(configuration.resourceTimeoutSeconds);
    if (!errorAtEnd_) {
        endSeconds_ += answer_.bodySeconds;
        const auto size = answer_.body.size();
        if (answer_.lostAfterBytes && *answer_.lostAfterBytes <= size) {
            const double share = size == 0 ? 0
                                           : static_cast<double>(*answer_.lostAfterBytes) /
                                                 static_cast<double>(size);
            endSeconds_ = answer_.delaySeconds + share * answer_.bodySeconds;
            errorAtEnd_ = ZRMUrlErrorNetworkConnectionLost;
        }
    }
    const double patienceForHeaders =
        std::min(patience, timeout(configuration.requestTimeoutSeconds));
    if (answer_.delaySeconds >= patienceForHeaders) {
        endSeconds_ = patienceForHeaders;
        errorAtEnd_ = ZRMUrlErrorTimedOut;
    } else if (endSeconds_ >= patience) {
        endSeconds_ = patience;
        errorAtEnd_ = ZRMUrlErrorTimedOut;
    }
}

ZRMUrlExchange ZRMSimulatedTransfer::arrivedBy(double seconds) const {
    ZRMUrlExchange exchange;
    if (answer_.errorCode || seconds < answer_.delaySeconds) {
        return exchange;
    }
    const double share = answer_.bodySeconds > 0
                             ? std::min(1.0, (seconds - answer_.delaySeconds) / answer_.bodySeconds)
                             : 1.0;
    auto count = static_cast<std::size_t>(share * static_cast<double>(answer_.body.size()));
    count = std::min(count, answer_.lostAfterBytes.value_or(count));
    exchange.data.assign(answer_.body.begin(),
                         answer_.body.begin() + static_cast<std::ptrdiff_t>(count));
    exchange.response = ZRMUrlResponse{answer_.status, answer_.headers};
    return exchange;
}

ZRMUrlExchange ZRMSimulatedTransfer::outcome() const {
    auto exchange = arrivedBy(endSeconds_);
    if (errorAtEnd_) {
        exchange.error = ZRMError(kZRMUrlErrorDomain, *errorAtEnd_);
    }
    return exchange;
}

ZRMUrlExchange ZRMSimulatedTransfer::brokenOff(double afterSeconds, int errorCode) const {
    auto exchange = arrivedBy(afterSeconds);
    exchange.error = ZRMError(kZRMUrlErrorDomain, errorCode);
    return exchange;
}
