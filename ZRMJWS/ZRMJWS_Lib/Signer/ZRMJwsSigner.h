// Wraps a payload in a JWS object.
#pragma once

#include <optional>
#include <string>

#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsAlgorithm.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsObject.h"

// Has no state; may be used from any thread.
class ZRMJwsSigner {
  public:
    // `algorithm` may be null. A signature that cannot be made is left out: who needs one looks at
    // the object's signatures.
    [[nodiscard]] ZRMJwsObject signPayload(const std::string& payload,
                                           const ZRMJwsAlgorithm* algorithm) const;

    // The steps of signing. Headers are absent when the algorithm provides none.
    [[nodiscard]] std::string encodedPayload(const std::string& payload) const;
    [[nodiscard]] std::optional<std::string> protectedHeaderForAlgorithm(
        const ZRMJwsAlgorithm* algorithm) const;
    [[nodiscard]] std::optional<ZRMDictionary> headerForAlgorithm(
        const ZRMJwsAlgorithm* algorithm) const;
};
