// RSA keys over OpenSSL.
#pragma once

#include <openssl/ossl_typ.h>

#include "ZRMPlatform/Ports/ZRMRsaKeys.h"

class ZRMLinuxRsaKeys : public ZRMRsaKeys {
  public:
    [[nodiscard]] std::shared_ptr<ZRMRsaKey> publicKeyFromDer(const ZRMData& der) const override;
    [[nodiscard]] std::shared_ptr<ZRMRsaKey> privateKeyFromDer(const ZRMData& der) const override;
};

// The public part of a key that OpenSSL holds, shared with it; absent when it is no RSA key.
[[nodiscard]] std::shared_ptr<ZRMRsaKey> zrm_publicRsaKey(EVP_PKEY* key);
