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
// The same for a document that lies on the device. Without `checkCert` the answer depends on
// nothing but there being a signature: it is given at once, on the caller's thread, and the
// verification, which asks nobody about revocation then, only writes its log. So no start waits for
// the network.
ZRMJwsSignatureVerification zrm_jwsStoredSignatureVerification(
    std::shared_ptr<const ZRMPlatform> platform, ZRMData rootCertificate);
