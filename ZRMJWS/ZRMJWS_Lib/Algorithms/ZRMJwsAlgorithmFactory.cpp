#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsAlgorithmFactory.h"

#include <utility>

#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsAlgorithmNone.h"
#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsAlgorithmRS256.h"

std::shared_ptr<ZRMJwsAlgorithm> ZRMJwsAlgorithmFactory::algorithmNone() {
    return std::make_shared<ZRMJwsAlgorithmNone>();
}

std::shared_ptr<ZRMJwsAlgorithm> ZRMJwsAlgorithmFactory::algorithmRS256(
    std::shared_ptr<ZRMDigests> digests, std::shared_ptr<const ZRMRsaKey> key) {
    return std::make_shared<ZRMJwsAlgorithmRS256>(std::move(digests), std::move(key));
}

std::shared_ptr<ZRMJwsAlgorithm> ZRMJwsAlgorithmFactory::algorithmHS256(
    const ZRMData& /*key*/, const std::string& /*keyId*/) {
    return nullptr;
}
