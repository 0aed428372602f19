// Signs documents as JWS objects in the general JSON serialization.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <boost/json/object.hpp>

#include "Tools/zrm-risk-server/ZRMSigningChain.h"

// RS256. Immutable; from any thread.
class ZRMDocumentSigner {
  public:
    // The chain stands in the unprotected header as "x5c", or, where `chainUrl` is not empty, is
    // named there as "x5u".
    ZRMDocumentSigner(std::shared_ptr<const ZRMSigningChain> chain, std::string chainUrl,
                      ZRMMisbehaviours misbehaviours);

    // The text of the JWS object around the payload. The protected header is standard base64 with
    // its padding: verifiers of this format read it as it stands.
    [[nodiscard]] std::string sign(const boost::json::object& payload) const;

  private:
    [[nodiscard]] std::string protectedHeader() const;
    [[nodiscard]] boost::json::object signatureOf(std::string_view payload, EVP_PKEY* key) const;
    [[nodiscard]] boost::json::object unprotectedHeader() const;

    std::shared_ptr<const ZRMSigningChain> chain_;
    std::string chainUrl_;
    ZRMMisbehaviours misbehaviours_;
    ZRMKeyPointer wrongKey_;
};
