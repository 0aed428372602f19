// Verifies every signature of a JWS object.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsObject.h"
#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMJwsVerifier.h"

// May be used from any thread; dropped meanwhile, it still answers.
class ZRMJwsSignatureVerifier {
  public:
    using CompletionHandler = std::function<void(std::optional<ZRMError> error)>;
    // With the results of all signatures, in the object's order.
    using ResultsHandler =
        std::function<void(std::optional<ZRMError> error, std::vector<ZRMJwsVerifyResult> results)>;

    // The pinned root as PEM.
    ZRMJwsSignatureVerifier(std::shared_ptr<const ZRMPlatform> platform, ZRMData rootCertificate);
    ZRMJwsSignatureVerifier(std::shared_ptr<const ZRMPlatform> platform,
                            ZRMJwsVerifierConfiguration configuration);

    // The handler is called exactly once. For an object without signatures at once, on the caller's
    // thread, with ZRMJwsErrorSignatureNotFound, whatever `checkCert` is. Otherwise when every
    // signature is answered, on a concurrent queue: with the error of the first that was answered
    // and is not verified (ZRMJwsErrorUnknown when it has none), or without an error when all are
    // verified or `checkCert` is false.
    void verifySignaturesForJwsObject(const ZRMJwsObject& jwsObject, bool checkCert,
                                      CompletionHandler completionHandler);
    // The same, for who wants to know what each signature came to.
    void verifyEachSignatureForJwsObject(const ZRMJwsObject& jwsObject, bool checkCert,
                                         ResultsHandler resultsHandler);

  private:
    std::shared_ptr<const ZRMPlatform> platform_;
    ZRMJwsVerifier verifier_;
};
