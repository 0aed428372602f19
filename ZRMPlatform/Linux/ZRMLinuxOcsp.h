// Questions to OCSP responders (RFC 6960) and the reading of their answers.
#pragma once

#include <memory>

#include <openssl/ocsp.h>

#include "ZRMPlatform/Linux/ZRMLinuxRevocationAnswer.h"
#include "ZRMPlatform/Linux/ZRMLinuxX509.h"

// A longer answer is none.
inline constexpr std::size_t kZRMMaximumOcspBytes = std::size_t{64} * 1024;

// A question about one certificate, with a nonce. Immutable.
class ZRMLinuxOcspQuestion {
  public:
    ZRMLinuxOcspQuestion(ZRMLinuxX509 certificate, ZRMLinuxX509 issuer);

    // DER; empty when the question cannot be made.
    [[nodiscard]] ZRMData der() const;

    // No answer unless the response is successful, its nonce (if any) the question's, its signature
    // by the issuer or by a responder that the issuer named for it, no critical extension unknown,
    // and its statement about this certificate in force at `now`.
    [[nodiscard]] ZRMLinuxRevocationAnswer read(std::span<const std::uint8_t> response,
                                                ZRMDate now) const;

  private:
    ZRMLinuxX509 certificate_;
    ZRMLinuxX509 issuer_;
    std::shared_ptr<OCSP_REQUEST> request_;
};
