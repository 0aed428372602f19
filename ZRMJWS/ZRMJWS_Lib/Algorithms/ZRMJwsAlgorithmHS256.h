// A placeholder for the shared-key algorithm: it names itself and its key, signs nothing and
// accepts nothing. It stays inert so that no document is ever trusted because of a shared key.
#pragma once

#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsAlgorithm.h"
#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsSignatureHeadersProvider.h"

class ZRMJwsAlgorithmHS256 final : public ZRMJwsAlgorithm, public ZRMJwsSignatureHeadersProvider {
  public:
    ZRMJwsAlgorithmHS256(ZRMData key, std::string keyId);

    [[nodiscard]] const ZRMData& key() const { return key_; }
    [[nodiscard]] const std::string& keyId() const { return keyId_; }

    [[nodiscard]] std::string name() const override;
    [[nodiscard]] std::optional<ZRMData> signData(const ZRMData& data) const override;
    [[nodiscard]] bool verifyData(const ZRMData& data, const ZRMData& signature) const override;
    [[nodiscard]] std::optional<ZRMDictionary> protectedHeaders() const override;
    [[nodiscard]] std::optional<ZRMDictionary> unprotectedHeaders() const override;

  private:
    ZRMData key_;
    std::string keyId_;
};
