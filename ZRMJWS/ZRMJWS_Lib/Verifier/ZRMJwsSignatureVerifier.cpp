#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMJwsSignatureVerifier.h"

#include <utility>

#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsErrorFactory.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

namespace {

// The answers of one object's signatures, as they come in on any thread.
class Answers {
  public:
    Answers(std::size_t expected, bool checkCert,
            ZRMJwsSignatureVerifier::ResultsHandler resultsHandler)
        : missing_(expected),
          checkCert_(checkCert),
          results_(expected, ZRMJwsVerifyResultNone),
          resultsHandler_(std::move(resultsHandler)) {}

    // True for the answer that was the last one missing.
    [[nodiscard]] bool add(std::size_t index, ZRMJwsVerifyResult result,
                           std::optional<ZRMError> error) {
        const ZRMLockGuard lock(mutex_);
        results_[index] = result;
        if (result != ZRMJwsVerifyResultVerified && checkCert_ && !error_) {
            error_ =
                error ? std::move(error) : ZRMJwsErrorFactory::errorForCode(ZRMJwsErrorUnknown);
        }
        return --missing_ == 0;
    }
    // After the last answer.
    void complete() {
        std::optional<ZRMError> error;
        std::vector<ZRMJwsVerifyResult> results;
        {
            const ZRMLockGuard lock(mutex_);
            error = std::move(error_);
            results = std::move(results_);
        }
        resultsHandler_(std::move(error), std::move(results));
    }

  private:
    ZRMMutex mutex_;
    std::size_t missing_ ZRM_GUARDED_BY(mutex_);
    const bool checkCert_;
    std::optional<ZRMError> error_ ZRM_GUARDED_BY(mutex_);
    std::vector<ZRMJwsVerifyResult> results_ ZRM_GUARDED_BY(mutex_);
    const ZRMJwsSignatureVerifier::ResultsHandler resultsHandler_;
};

}  // namespace

ZRMJwsSignatureVerifier::ZRMJwsSignatureVerifier(std::shared_ptr<const ZRMPlatform> platform,
                                                 ZRMData rootCertificate)
    : ZRMJwsSignatureVerifier(
          std::move(platform),
          ZRMJwsVerifierConfiguration(std::vector<ZRMData>{std::move(rootCertificate)})) {}

ZRMJwsSignatureVerifier::ZRMJwsSignatureVerifier(std::shared_ptr<const ZRMPlatform> platform,
                                                 ZRMJwsVerifierConfiguration configuration)
    : platform_(std::move(platform)), verifier_(platform_, std::move(configuration)) {}

void ZRMJwsSignatureVerifier::verifySignaturesForJwsObject(const ZRMJwsObject& jwsObject,
                                                           bool checkCert,
                                                           CompletionHandler completionHandler) {
    verifyEachSignatureForJwsObject(jwsObject, checkCert,
                                    [completionHandler = std::move(completionHandler)](
                                        std::optional<ZRMError> error, const auto& /*results*/) {
                                        completionHandler(std::move(error));
                                    });
}

void ZRMJwsSignatureVerifier::verifyEachSignatureForJwsObject(const ZRMJwsObject& jwsObject,
                                                              bool checkCert,
                                                              ResultsHandler resultsHandler) {
    const auto& signatures = jwsObject.signatures();
    if (signatures.empty()) {
        resultsHandler(ZRMJwsErrorFactory::errorForCode(ZRMJwsErrorSignatureNotFound), {});
        return;
    }
    const auto answers =
        std::make_shared<Answers>(signatures.size(), checkCert, std::move(resultsHandler));
    const auto queue = platform_->executor->concurrentQueue(ZRMQualityOfService::Default);
    for (std::size_t index = 0; index < signatures.size(); ++index) {
        verifier_.verifyJwsSignature(
            signatures[index], jwsObject.payload(),
            [answers, queue, index](ZRMJwsVerifyResult result, std::optional<ZRMError> error) {
                if (answers->add(index, result, std::move(error))) {
                    queue->post([answers] { answers->complete(); });
                }
            });
    }
}
