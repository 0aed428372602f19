// Verifies one RS256 signature with the certificate that comes with it.
#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMErrorProneOperation.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMOperationQueue.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMUrlRequestOperation.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsSignature.h"
#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMJwsVerifierConfiguration.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

// The numbers are those that callers know.
enum ZRMJwsVerifyResult : int {
    ZRMJwsVerifyResultNone = 0,            // not answered yet, or cancelled
    ZRMJwsVerifyResultBadCertificate = 2,  // a pinned certificate, or no trusted key in the chain
    ZRMJwsVerifyResultNoChain = 3,         // neither "x5c" nor a usable "x5u"
    ZRMJwsVerifyResultMismatch = 4,        // the signature is not that of the leaf's key
    ZRMJwsVerifyResultDownloadFailed = 5,  // of the chain that "x5u" names; the error says why
    ZRMJwsVerifyResultVerified = 6,
};

// The key is the leaf's, the algorithm RS256: nothing in the signature chooses another.
class ZRMJwsSignatureVerifyRS256Operation final : public ZRMErrorProneOperation {
  public:
    // `payload` is the object's, as it travels.
    ZRMJwsSignatureVerifyRS256Operation(std::shared_ptr<const ZRMPlatform> platform,
                                        ZRMJwsSignature jwsSignature, std::string payload,
                                        ZRMJwsVerifierConfiguration configuration);

    [[nodiscard]] const ZRMJwsSignature& jwsSignature() const { return jwsSignature_; }
    [[nodiscard]] const std::string& payload() const { return payload_; }
    // The pinned certificates, each as PEM.
    [[nodiscard]] const std::vector<ZRMData>& certificateChain() const {
        return configuration_.certificateChain();
    }
    [[nodiscard]] ZRMJwsVerifyResult result() const { return result_; }

    // Ends the download under way and finishes.
    void cancel() override;

  protected:
    void execute() override;

  private:
    using Certificates = std::vector<ZRMData>;

    void verify();
    void verifyWithX5C(const ZRMJsonValue& x5c);
    void verifyWithX5U(const std::string& url);
    void downloadEnded(const ZRMUrlRequestOperation& download);
    // The pinned certificates behind the delivered ones. Where one cannot be read, finishes with
    // result 2 and yields nothing.
    [[nodiscard]] std::optional<Certificates> withPinnedCertificates(Certificates delivered);
    void copyPublicKeyFromCertificateChain(const Certificates& chain, std::size_t deliveredCount);
    void trustEvaluated(const ZRMTrustEvaluation& evaluation);
    void verifyWithKey(const std::shared_ptr<const ZRMRsaKey>& key);
    void finishWithResult(ZRMJwsVerifyResult result, std::optional<ZRMError> error = std::nullopt);
    [[nodiscard]] std::weak_ptr<ZRMJwsSignatureVerifyRS256Operation> weakSelf();

    const std::shared_ptr<const ZRMPlatform> platform_;
    const ZRMJwsSignature jwsSignature_;
    const std::string payload_;
    const ZRMJwsVerifierConfiguration configuration_;
    ZRMOperationQueue queue_;
    std::atomic<ZRMJwsVerifyResult> result_ = ZRMJwsVerifyResultNone;
};
