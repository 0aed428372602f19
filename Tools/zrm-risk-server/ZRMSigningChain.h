// The certificates under which the server signs documents, and what it says of their revocation.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Tools/zrm-risk-server/ZRMCertificateMaker.h"
#include "Tools/zrm-risk-server/ZRMMisbehaviour.h"
#include "Tools/zrm-risk-server/ZRMPki.h"

// Made anew at each start, since the certificates name the server's own address for their
// revocation; the keys and the root stay those of the directory. Immutable; from any thread.
//
//   root  ->  intermediate  ->  leaf       delivered with the document
//   root  ->  leaf                         where the document only names the leaf's address
class ZRMSigningChain {
  public:
    static constexpr const char* kOcspPath = "/ocsp";
    static constexpr const char* kRootCrlPath = "/crl/root.crl";
    static constexpr const char* kIntermediateCrlPath = "/crl/intermediate.crl";
    static constexpr const char* kLeafPath = "/certificates/signing.crt";

    // `baseUrl` is the server's, without a slash at the end. With `isNamed` the leaf comes from the
    // root. Throws std::runtime_error with OpenSSL's reason, as the other operations do.
    ZRMSigningChain(const ZRMPki& pki, const std::string& baseUrl, bool isNamed,
                    const ZRMMisbehaviours& misbehaviours);

    // The leaf's.
    [[nodiscard]] EVP_PKEY* key() const { return key_.get(); }
    // DER, the leaf first, without the root.
    [[nodiscard]] std::vector<std::string> certificates() const;
    [[nodiscard]] std::string leafPem() const;

    // An OCSP response in DER to a request in DER: good for the certificates of this chain, or
    // revoked, unknown for others of its issuers; absent where the request is none.
    [[nodiscard]] std::optional<std::string> answerOcsp(std::string_view request) const;
    // The lists of the two issuers, in DER, valid for an hour.
    [[nodiscard]] std::string rootCrl() const;
    [[nodiscard]] std::string intermediateCrl() const;

  private:
    [[nodiscard]] const ZRMIdentity* leafIssuer() const;
    [[nodiscard]] std::string crlOf(const ZRMIdentity& issuer) const;

    ZRMIdentity root_;
    ZRMIdentity intermediate_;
    std::optional<ZRMIdentity> foreignRoot_;
    ZRMKeyPointer key_;
    ZRMCertificatePointer leaf_;
    const bool isNamed_;
    const bool isLeafRevoked_;
};
