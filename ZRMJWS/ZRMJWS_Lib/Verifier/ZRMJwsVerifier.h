// Verifies single signatures of JWS objects.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMOperationQueue.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsSignature.h"
#include "ZRMJWS/ZRMJWS_Lib/Operations/ZRMJwsSignatureVerifyRS256Operation.h"
#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMJwsVerifierConfiguration.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

// One signature after the other, in the order of the calls. May be used from any thread; dropped
// meanwhile, it still answers.
class ZRMJwsVerifier {
  public:
    using CompletionHandler =
        std::function<void(ZRMJwsVerifyResult result, std::optional<ZRMError> error)>;

    ZRMJwsVerifier(std::shared_ptr<const ZRMPlatform> platform,
                   ZRMJwsVerifierConfiguration configuration);

    [[nodiscard]] const ZRMJwsVerifierConfiguration& configuration() const {
        return configuration_;
    }

    // `payload` is the object's, as it travels. The handler is called exactly once, on a thread of
    // the verifier's queue. A signature for which there is no operation is answered with
    // ZRMJwsVerifyResultNone and no error.
    void verifyJwsSignature(const ZRMJwsSignature& jwsSignature, const std::string& payload,
                            CompletionHandler completionHandler);

    // Absent, with a log line, when the protected header cannot be read or names an algorithm other
    // than RS256. The header's text has to be standard base64 with its padding.
    [[nodiscard]] std::shared_ptr<ZRMJwsSignatureVerifyRS256Operation> verifyOperationForSignature(
        const ZRMJwsSignature& jwsSignature, const std::string& payload) const;

  private:
    std::shared_ptr<const ZRMPlatform> platform_;
    ZRMJwsVerifierConfiguration configuration_;
    ZRMOperationQueue queue_;
};
