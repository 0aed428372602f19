// RSA signatures with PKCS#1 v1.5 padding over SHA-256 (RFC 7518, section 3.3).
#pragma once

#include <memory>

#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsAlgorithm.h"
#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsSignatureHeadersProvider.h"
#include "ZRMPlatform/Ports/ZRMDigests.h"
#include "ZRMPlatform/Ports/ZRMRsaKeys.h"

class ZRMJwsAlgorithmRS256 final : public ZRMJwsAlgorithm, public ZRMJwsSignatureHeadersProvider {
  public:
    // Without a key nothing is signed and nothing verified. A public key is enough to verify.
    ZRMJwsAlgorithmRS256(std::shared_ptr<ZRMDigests> digests, std::shared_ptr<const ZRMRsaKey> key);

    [[nodiscard]] std::string name() const override;
    [[nodiscard]] std::optional<ZRMData> signData(const ZRMData& data) const override;
    [[nodiscard]] bool verifyData(const ZRMData& data, const ZRMData& signature) const override;
    [[nodiscard]] std::optional<ZRMDictionary> protectedHeaders() const override;
    [[nodiscard]] std::optional<ZRMDictionary> unprotectedHeaders() const override;

    // The ASCII bytes of the bytes' base64url text.
    [[nodiscard]] static ZRMData getBase64UrlBytes(const ZRMData& bytes);

  private:
    [[nodiscard]] std::optional<ZRMData> digestOf(const ZRMData& data) const;

    std::shared_ptr<ZRMDigests> digests_;
    std::shared_ptr<const ZRMRsaKey> key_;
};
