// The headers that an algorithm puts beside its signature.
#pragma once

#include <optional>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"

class ZRMJwsSignatureHeadersProvider {
  public:
    virtual ~ZRMJwsSignatureHeadersProvider() = default;

    // Covered by the signature. Without it no signature is made.
    [[nodiscard]] virtual std::optional<ZRMDictionary> protectedHeaders() const = 0;
    [[nodiscard]] virtual std::optional<ZRMDictionary> unprotectedHeaders() const = 0;
};
