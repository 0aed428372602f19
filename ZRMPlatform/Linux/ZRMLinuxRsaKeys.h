// RSA keys over OpenSSL.
#pragma once

#include "ZRMPlatform/Ports/ZRMRsaKeys.h"

class ZRMLinuxRsaKeys : public ZRMRsaKeys {
  public:
    [[nodiscard]] std::shared_ptr<ZRMRsaKey> publicKeyFromDer(const ZRMData& der) const override;
    [[nodiscard]] std::shared_ptr<ZRMRsaKey> privateKeyFromDer(const ZRMData& der) const override;
};
