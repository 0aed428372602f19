// Digests over OpenSSL.
#pragma once

#include "ZRMPlatform/Ports/ZRMDigests.h"

class ZRMLinuxDigests : public ZRMDigests {
  public:
    std::unique_ptr<ZRMDigestContext> makeContext(ZRMDigestAlgorithm algorithm) override;
};
