// How a JWS signature is made and checked.
#pragma once

#include <optional>
#include <string>

#include "ZRMPlatform/Ports/Values/ZRMData.h"

// Immutable; may be used from any thread.
class ZRMJwsAlgorithm {
  public:
    virtual ~ZRMJwsAlgorithm() = default;

    [[nodiscard]] virtual std::string name() const = 0;
    // The ASCII bytes of the signature's base64url text; absent when nothing can be signed.
    [[nodiscard]] virtual std::optional<ZRMData> signData(const ZRMData& data) const = 0;
    // `signature` is the signature itself, decoded.
    [[nodiscard]] virtual bool verifyData(const ZRMData& data, const ZRMData& signature) const = 0;
};
