#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMUrlRequestOperation.h"

#include <array>
#include <charconv>
#include <limits>
#include <string>
#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSRunLoop/NSRunLoop+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Numbers/ZRMNumbers.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMUrlRetryPolicy.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Timer/ZRMTimer.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

// What attempts change, on the session's thread, the run loop's and that of cancel().
struct ZRMUrlRequestOperation::Attempts {
    Attempts(ZRMUrlRequest theRequest, ZRMUrlRetryIntervals intervals)
        : maxRetryIntervalSeconds(intervals.maxSeconds),
          mutableRequest(std::move(theRequest)),
          retryTimeoutSeconds(intervals.minSeconds) {}

    const double maxRetryIntervalSeconds;

    mutable ZRMMutex mutex;  // guards what follows; taken before any lock of the session
    ZRMUrlRequest mutableRequest ZRM_GUARDED_BY(mutex);
    double retryTimeoutSeconds ZRM_GUARDED_BY(mutex);
    std::optional<ZRMData> data ZRM_GUARDED_BY(mutex);
    std::optional<ZRMUrlResponse> response ZRM_GUARDED_BY(mutex);
    std::shared_ptr<ZRMUrlSession> urlSession ZRM_GUARDED_BY(mutex);
    std::shared_ptr<ZRMTimer> retryTimer ZRM_GUARDED_BY(mutex);
    std::shared_ptr<ZRMRunLoop> runLoop ZRM_GUARDED_BY(mutex);
    bool cancelled ZRM_GUARDED_BY(mutex) = false;
};

namespace {

ZRMUrlSessionConfiguration configurationFor(const ZRMUrlRequest& request) {
    ZRMUrlSessionConfiguration configuration;
    configuration.cachePolicy = request.cachePolicy;
    configuration.requestTimeoutSeconds = request.timeoutIntervalSeconds;
    configuration.resourceTimeoutSeconds = request.timeoutIntervalSeconds;
    return configuration;
}

// With a point in whatever locale the host has set.
std::string textWithOneDecimal(double value) {
    constexpr std::size_t kSignPointAndDecimal = 3;
    std::array<char, std::numeric_limits<double>::max_exponent10 + 1 + kSignPointAndDecimal> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 1)
            .ptr;
    return {text.data(), end};
}

}  // namespace

ZRMUrlRequestOperation::ZRMUrlRequestOperation(std::shared_ptr<const ZRMPlatform> platform,
                                               ZRMUrlRequest request, bool retriable,
                                               double minRetryIntervalSeconds,
                                               double maxRetryIntervalSeconds)
    : ZRMErrorProneOperation(platform->consoleLog),
      platform_(std::move(platform)),
      retriable_(retriable),
      attempts_(std::make_unique<Attempts>(
          std::move(request),
          zrm_usableRetryIntervals(minRetryIntervalSeconds, maxRetryIntervalSeconds))) {}

ZRMUrlRequestOperation::~ZRMUrlRequestOperation() {
    if (attempts_->urlSession) {
        attempts_->urlSession->invalidateAndCancel();
    }
}

ZRMUrlRequest ZRMUrlRequestOperation::request() const {
    const ZRMLockGuard lock(attempts_->mutex);
    return attempts_->mutableRequest;
}

bool ZRMUrlRequestOperation::isRetriable() const {
    return retriable_;
}

double ZRMUrlRequestOperation::retryTimeoutSeconds() const {
    const ZRMLockGuard lock(attempts_->mutex);
    return attempts_->retryTimeoutSeconds;
}

std::optional<ZRMData> ZRMUrlRequestOperation::data() const {
    const ZRMLockGuard lock(attempts_->mutex);
    return attempts_->data;
}

std::optional<ZRMUrlResponse> ZRMUrlRequestOperation::response() const {
    const ZRMLockGuard lock(attempts_->mutex);
    return attempts_->response;
}

void ZRMUrlRequestOperation::cancel() {
    std::shared_ptr<ZRMUrlSession> session;
    {
        const ZRMLockGuard lock(attempts_->mutex);
        attempts_->cancelled = true;
        session.swap(attempts_->urlSession);
    }
    if (session) {
        session->invalidateAndCancel();
    }
    ZRMErrorProneOperation::cancel();
}

void ZRMUrlRequestOperation::execute() {
    startSession();
}

std::weak_ptr<ZRMUrlRequestOperation> ZRMUrlRequestOperation::weakSelf() {
    return std::static_pointer_cast<ZRMUrlRequestOperation>(shared_from_this());
}

void ZRMUrlRequestOperation::startSession() {
    const auto request = prepareRequest();
    if (!request) {
        return;
    }
    auto session = platform_->urlSessions->makeSession(configurationFor(*request));
    zrm_logVerbose(this, [&] { return "Creating url session for " + request->url; });
    const ZRMLockGuard lock(attempts_->mutex);
    // Under the lock, so that cancel() finds a session it can end or prevents its start.
    if (attempts_->cancelled) {
        return;
    }
    attempts_->urlSession = session;
    session->start(*request, [weak = weakSelf()](ZRMUrlExchange exchange) {
        if (const auto self = weak.lock()) {
            self->exchangeEnded(std::move(exchange));
        }
    });
}

std::optional<ZRMUrlRequest> ZRMUrlRequestOperation::prepareRequest() {
    const auto now = zrm_int64FromDouble(platform_->clock->now().secondsSince1970);
    const ZRMLockGuard lock(attempts_->mutex);
    if (attempts_->cancelled || isFinished()) {
        return std::nullopt;
    }
    attempts_->mutableRequest.headers.set("Request-Send-Timestamp", std::to_string(now));
    return attempts_->mutableRequest;
}

void ZRMUrlRequestOperation::exchangeEnded(ZRMUrlExchange exchange) {
    const int statusCode = exchange.response ? exchange.response->statusCode : 0;
    const auto byteCount = exchange.response ? exchange.data.size() : 0;
    std::shared_ptr<ZRMUrlSession> session;
    double retryTimeoutSeconds = 0;
    {
        const ZRMLockGuard lock(attempts_->mutex);
        if (attempts_->cancelled || isFinished()) {
            return;
        }
        session.swap(attempts_->urlSession);
        attempts_->data =
            exchange.response ? std::optional(std::move(exchange.data)) : std::nullopt;
        attempts_->response = std::move(exchange.response);
        retryTimeoutSeconds = attempts_->retryTimeoutSeconds;
    }
    zrm_logVerbose(this, [&] {
        return "Response: status code - " + std::to_string(statusCode) + ", data - " +
               std::to_string(byteCount) + " bytes";
    });
    session->invalidateAndCancel();
    if (retriable_ &&
        zrm_shouldRetryForHTTPStatusCode(statusCode, exchange.error, retryTimeoutSeconds,
                                         attempts_->maxRetryIntervalSeconds)) {
        scheduleRetry();
    } else {
        finishWithError(std::move(exchange.error));
    }
}

void ZRMUrlRequestOperation::scheduleRetry() {
    std::shared_ptr<ZRMTimer> oldTimer;
    std::shared_ptr<ZRMRunLoop> runLoop;
    double delaySeconds = 0;
    {
        const ZRMLockGuard lock(attempts_->mutex);
        oldTimer.swap(attempts_->retryTimer);
        runLoop = attempts_->runLoop;
        delaySeconds = zrm_calculateRetryTimeout(attempts_->retryTimeoutSeconds,
                                                 attempts_->maxRetryIntervalSeconds);
        attempts_->retryTimeoutSeconds = delaySeconds;
    }
    if (oldTimer) {
        oldTimer->invalidate();
    }
    zrm_logVerbose(this, [&] {
        return "Scheduling retry for request '" + request().url +
               "' with delay: " + textWithOneDecimal(delaySeconds);
    });
    const auto timer = std::make_shared<ZRMTimer>(
        delaySeconds, false, ZRMBlockHolder::holderWithBlock([weak = weakSelf()] {
            if (const auto self = weak.lock()) {
                self->startSession();
            }
        }));
    if (!runLoop) {
        runLoop = makeRunLoopWithMode(ZRMRunLoopMode::Default);
    }
    {
        const ZRMLockGuard lock(attempts_->mutex);
        attempts_->retryTimer = timer;
        attempts_->runLoop = runLoop;
    }
    runLoop->addTimer(timer);
}

std::shared_ptr<ZRMRunLoop> ZRMUrlRequestOperation::makeRunLoopWithMode(ZRMRunLoopMode mode) {
    return zrm_startAsyncRunLoopForMode(*platform_->executor, mode,
                                        ZRMQualityOfService::UserInitiated, [weak = weakSelf()] {
                                            const auto self = weak.lock();
                                            return !self || self->isFinished();
                                        });
}
