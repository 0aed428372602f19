// One HTTP request, repeated with doubling delays while that may help.
#pragma once

#include <memory>
#include <optional>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMErrorProneOperation.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/RunLoop/ZRMRunLoop.h"
#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/Values/ZRMUrlRequest.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

// HTTP error statuses are answers, not errors: the caller judges response(). The operation stays
// executing over all its attempts; dropped while it executes, it ends its exchange.
class ZRMUrlRequestOperation : public ZRMErrorProneOperation {
  public:
    static constexpr double kMinRetryIntervalSeconds = 1.0;
    static constexpr double kMaxRetryIntervalSeconds = 86400.0;

    // The first retry comes after twice the minimum interval, each further one after twice the
    // delay before, the last one after the maximum. Intervals of which that would never come true
    // are replaced by the default ones.
    ZRMUrlRequestOperation(std::shared_ptr<const ZRMPlatform> platform, ZRMUrlRequest request,
                           bool retriable = false,
                           double minRetryIntervalSeconds = kMinRetryIntervalSeconds,
                           double maxRetryIntervalSeconds = kMaxRetryIntervalSeconds);
    ~ZRMUrlRequestOperation() override;

    // A copy, with the headers of the last attempt.
    [[nodiscard]] ZRMUrlRequest request() const;
    [[nodiscard]] bool isRetriable() const;
    // The last delay used, or the minimum interval before the first retry.
    [[nodiscard]] double retryTimeoutSeconds() const;

    // Of the last attempt, once finished. Data is absent when that attempt brought no response.
    [[nodiscard]] std::optional<ZRMData> data() const;
    [[nodiscard]] std::optional<ZRMUrlResponse> response() const;

    // Ends the exchange under way and finishes; no other one begins.
    void cancel() override;

  protected:
    void execute() override;

  private:
    struct Attempts;

    [[nodiscard]] std::weak_ptr<ZRMUrlRequestOperation> weakSelf();
    void startSession();
    // The request for the next attempt; absent when there is to be none.
    [[nodiscard]] std::optional<ZRMUrlRequest> prepareRequest();
    void exchangeEnded(ZRMUrlExchange exchange);
    void scheduleRetry();
    [[nodiscard]] std::shared_ptr<ZRMRunLoop> makeRunLoopWithMode(ZRMRunLoopMode mode);

    const std::shared_ptr<const ZRMPlatform> platform_;
    const bool retriable_;
    const std::unique_ptr<Attempts> attempts_;
};
