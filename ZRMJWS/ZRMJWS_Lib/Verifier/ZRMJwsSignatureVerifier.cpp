#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMJwsSignatureVerifier.h"

#include <mutex>
#include <utility>

#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsErrorFactory.h"

namespace {

// The answers of one object's signatures, as they come in on any thread.
class Answers {
  public:
    Answers(std::size_t expected, bool checkCert,
            ZRMJwsSignatureVerifier::CompletionHandler completionHandler)
        : missing_(expected),
          checkCert_(checkCert),
          completionHandler_(std::move(completionHandler)) {}

    // True for the answer that was the last one missing.
    [[nodiscard]] bool add(ZRMJwsVerifyResult result, std::optional<ZRMError> error) {
        const std::lock_guard lock(mutex_);
        if (result != ZRMJwsVerifyResultVerified && checkCert_ && !error_) {
            error_ =
                error ? std::move(error) : ZRMJwsErrorFactory::errorForCode(ZRMJwsErrorUnknown);
        }
        return --missing_ == 0;
    }
    // After the last answer.
    void complete() { completionHandler_(error_); }

  private:
    std::mutex mutex_;
    std::size_t missing_;
    const bool checkCert_;
    std::optional<ZRMError> error_;
    const ZRMJwsSignatureVerifier::CompletionHandler completionHandler_;
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
    const auto& signatures = jwsObject.signatures();
    if (signatures.empty()) {
        completionHandler(ZRMJwsErrorFactory::errorForCode(ZRMJwsErrorSignatureNotFound));
        return;
    }
    const auto answers =
        std::make_shared<Answers>(signatures.size(), checkCert, std::move(completionHandler));
    const auto queue = platform_->executor->concurrentQueue(ZRMQualityOfService::Default);
    for (const auto& signature : signatures) {
        verifier_.verifyJwsSignature(
            signature, jwsObject.payload(),
            [answers, queue](ZRMJwsVerifyResult result, std::optional<ZRMError> error) {
                if (answers->add(result, std::move(error))) {
                    queue->post([answers] { answers->complete(); });
                }
            });
    }
}
