// One HTTP request, repeated with doubling delays while that may help.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMErrorProneOperation.h"
#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/Values/ZRMUrlRequest.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

class ZRMRunLoop;

// HTTP error statuses are answers, not errors: the caller judges response().
class ZRMUrlRequestOperation : public ZRMErrorProneOperation {
  public:
    static constexpr double kMinRetryIntervalSeconds = 1.0;
    static constexpr double kMaxRetryIntervalSeconds = 86400.0;

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

    // Of the last attempt, once finished. Data is absent when no exchange brought an answer.
    [[nodiscard]] std::optional<ZRMData> data() const;
    [[nodiscard]] std::optional<ZRMUrlResponse> response() const;

    void cancel() override;

  protected:
    void execute() override;

  private:
    class Attempts;
    std::shared_ptr<Attempts> attempts_;
};
