// Whether a chain of X.509 certificates leads to an anchor.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/ZRMRsaKeys.h"

// The numbers are those that callers of the original platform use.
enum ZRMTrustResult : std::uint32_t {
    // There is no leaf: none was given, or its bytes are not one certificate and nothing after it.
    ZRMTrustResultInvalid = 0,
    ZRMTrustResultProceed = 1,                  // trusted, because a person said so
    ZRMTrustResultDeny = 3,                     // not trusted, because a person said so
    ZRMTrustResultUnspecified = 4,              // trusted: the chain is good and nobody said no
    ZRMTrustResultRecoverableTrustFailure = 5,  // not trusted: no good path, or a weak one
    ZRMTrustResultFatalTrustFailure = 6,        // not trusted: a certificate was revoked
    ZRMTrustResultOtherError = 7,               // the evaluation itself failed
};

// How to ask whether a certificate was revoked; bits.
enum ZRMTrustRevocationMethods : std::uint32_t {
    ZRMTrustRevocationNone = 0,
    ZRMTrustRevocationOcsp = 1,
    ZRMTrustRevocationCrl = 2,
};

struct ZRMTrustRequest {
    // DER, the leaf first; further ones may stand in any order and need not be of use.
    std::vector<ZRMData> certificates;
    // DER. A path that reaches one of them is complete. What is no certificate is passed over.
    std::vector<ZRMData> anchors;
    std::uint32_t revocationMethods = ZRMTrustRevocationOcsp | ZRMTrustRevocationCrl;
};

struct ZRMTrustEvaluation {
    ZRMTrustResult result = ZRMTrustResultInvalid;
    // The leaf's; absent unless it is trusted and its key is an RSA key.
    std::shared_ptr<const ZRMRsaKey> publicKey;
    // For people: why it is not trusted; empty otherwise.
    std::string reason;

    [[nodiscard]] bool isTrusted() const {
        return result == ZRMTrustResultProceed || result == ZRMTrustResultUnspecified;
    }
};

// May be called from any thread. Whatever the bytes are, the work is bounded.
class ZRMTrust {
  public:
    using Completion = std::function<void(ZRMTrustEvaluation)>;

    virtual ~ZRMTrust() = default;

    // Evaluates at the clock's time: basic path validation (RFC 5280), keys and digests of today's
    // strength, then revocation of every certificate below the anchor. An answer that says revoked
    // ends the trust, the lack of a usable one does not. May fetch answers over the network, within
    // bounds of time and size. The completion is called exactly once, on a thread of the port's
    // choosing, never before this call returns.
    virtual void evaluate(ZRMTrustRequest request, Completion completion) = 0;
};
