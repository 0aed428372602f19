// The trust decisions of a simulated device: by script, or those of another body.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "ZRMPlatform/Ports/ZRMPlatform.h"

// Kept over restarts of the process. Nothing is trusted unless told so. One thread.
class ZRMSimulatedTrust final : public ZRMTrust {
  public:
    using Handler = std::function<ZRMTrustEvaluation(const ZRMTrustRequest&)>;
    using Maker = std::function<std::shared_ptr<ZRMTrust>(const ZRMPlatform&)>;

    // What every evaluation comes to; a trusted leaf's key is the real one of its certificate.
    void setResult(ZRMTrustResult result) { result_ = result; }
    // Decides in place of the result; an empty handler ends that.
    void handle(Handler handler) { handler_ = std::move(handler); }
    // Another body answers, made anew for each process from its ports; an empty maker ends that.
    void plug(Maker maker);

    // Every request evaluated, oldest first.
    [[nodiscard]] const std::vector<ZRMTrustRequest>& requests() const { return requests_; }

    // For the device: the ports of the process that begins.
    void processStarted(const std::shared_ptr<const ZRMPlatform>& platform);

    void evaluate(ZRMTrustRequest request, Completion completion) override;

  private:
    [[nodiscard]] ZRMTrustEvaluation decide(const ZRMTrustRequest& request) const;

    ZRMTrustResult result_ = ZRMTrustResultRecoverableTrustFailure;
    Handler handler_;
    Maker maker_;
    std::shared_ptr<ZRMTrust> plugged_;
    std::vector<ZRMTrustRequest> requests_;
    std::weak_ptr<const ZRMPlatform> platform_;
};
