// No signature at all: documents that carry a payload alone.
#pragma once

#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsAlgorithm.h"
#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsSignatureHeadersProvider.h"

// Its name has a capital N, unlike that of RFC 7518; it never reaches a header.
class ZRMJwsAlgorithmNone final : public ZRMJwsAlgorithm, public ZRMJwsSignatureHeadersProvider {
  public:
    [[nodiscard]] std::string name() const override { return "None"; }
    [[nodiscard]] std::optional<ZRMData> signData(const ZRMData&) const override { return {}; }
    [[nodiscard]] bool verifyData(const ZRMData&, const ZRMData&) const override { return true; }
    [[nodiscard]] std::optional<ZRMDictionary> protectedHeaders() const override { return {}; }
    [[nodiscard]] std::optional<ZRMDictionary> unprotectedHeaders() const override { return {}; }
};
