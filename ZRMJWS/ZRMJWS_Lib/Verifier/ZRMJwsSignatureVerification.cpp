#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMJwsSignatureVerification.h"

#include <utility>
#include <vector>

namespace {

ZRMJwsSignatureVerification verificationWith(std::shared_ptr<const ZRMPlatform> platform,
                                             ZRMData rootCertificate, bool checksRevocation) {
    const auto configuration =
        ZRMJwsVerifierConfiguration(std::vector<ZRMData>{std::move(rootCertificate)})
            .withRevocationChecks(checksRevocation);
    const auto verifier =
        std::make_shared<ZRMJwsSignatureVerifier>(std::move(platform), configuration);
    return [verifier](const ZRMJwsObject& jwsObject, bool checkCert,
                      ZRMJwsSignatureVerifier::CompletionHandler completionHandler) {
        verifier->verifySignaturesForJwsObject(jwsObject, checkCert, std::move(completionHandler));
    };
}

}  // namespace

ZRMJwsSignatureVerification zrm_jwsSignatureVerification(
    std::shared_ptr<const ZRMPlatform> platform, ZRMData rootCertificate) {
    return verificationWith(std::move(platform), std::move(rootCertificate), true);
}

ZRMJwsSignatureVerification zrm_jwsStoredSignatureVerification(
    std::shared_ptr<const ZRMPlatform> platform, ZRMData rootCertificate) {
    return [verify = verificationWith(std::move(platform), std::move(rootCertificate), false)](
               const ZRMJwsObject& jwsObject, bool checkCert,
               ZRMJwsSignatureVerifier::CompletionHandler completionHandler) {
        if (checkCert || jwsObject.signatures().empty()) {
            verify(jwsObject, checkCert, std::move(completionHandler));
            return;
        }
        verify(jwsObject, checkCert, [](const std::optional<ZRMError>&) {});
        completionHandler(std::nullopt);
    };
}
