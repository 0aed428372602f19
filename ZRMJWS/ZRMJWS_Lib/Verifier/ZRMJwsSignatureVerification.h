// How those who receive signed documents have them verified.
#pragma once

#include <functional>
#include <memory>

#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMJwsSignatureVerifier.h"

// What ZRMJwsSignatureVerifier::verifySignaturesForJwsObject() does; may be called from any thread.
using ZRMJwsSignatureVerification = std::function<void(
    const ZRMJwsObject& jwsObject, bool checkCert, ZRMJwsSignatureVerifier::CompletionHandler)>;

// By a verifier of its own. The root is PEM.
ZRMJwsSignatureVerification zrm_jwsSignatureVerification(
    std::shared_ptr<const ZRMPlatform> platform, ZRMData rootCertificate);
// The same without asking anybody whether a certificate was revoked: for a check whose outcome does
// not depend on the certificates, and that must not wait for the network.
ZRMJwsSignatureVerification zrm_jwsSignatureVerificationWithoutRevocation(
    std::shared_ptr<const ZRMPlatform> platform, ZRMData rootCertificate);
