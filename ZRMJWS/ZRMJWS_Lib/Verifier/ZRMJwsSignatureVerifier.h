// Verifies every signature of a JWS object.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsObject.h"
#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMJwsVerifier.h"

// May be used from any thread; dropped meanwhile, it still answers.
class ZRMJwsSignatureVerifier {
  public:
    using CompletionHandler = std::function<void(std::optional<ZRMError> error)>;

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

  private:
    std::shared_ptr<const ZRMPlatform> platform_;
    ZRMJwsVerifier verifier_;
};
