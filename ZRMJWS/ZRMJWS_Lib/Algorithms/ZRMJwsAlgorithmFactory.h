// Makes the algorithms that the library works with.
#pragma once

#include <memory>
#include <string>

#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsAlgorithm.h"
#include "ZRMPlatform/Ports/ZRMDigests.h"
#include "ZRMPlatform/Ports/ZRMRsaKeys.h"

class ZRMJwsAlgorithmFactory {
  public:
    static std::shared_ptr<ZRMJwsAlgorithm> algorithmNone();
    static std::shared_ptr<ZRMJwsAlgorithm> algorithmRS256(std::shared_ptr<ZRMDigests> digests,
                                                           std::shared_ptr<const ZRMRsaKey> key);
    // Always absent: documents are never trusted because of a shared key.
    static std::shared_ptr<ZRMJwsAlgorithm> algorithmHS256(const ZRMData& key,
                                                           const std::string& keyId);
};
