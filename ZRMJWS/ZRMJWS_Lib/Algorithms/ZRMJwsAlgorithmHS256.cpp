#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsAlgorithmHS256.h"

#include <utility>

#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsKeys.h"

ZRMJwsAlgorithmHS256::ZRMJwsAlgorithmHS256(ZRMData key, std::string keyId)
    : key_(std::move(key)), keyId_(std::move(keyId)) {}

std::string ZRMJwsAlgorithmHS256::name() const {
    return kZRMJwsAlgorithmHS256Key;
}

std::optional<ZRMData> ZRMJwsAlgorithmHS256::signData(const ZRMData& /*data*/) const {
    return {};
}

bool ZRMJwsAlgorithmHS256::verifyData(const ZRMData& /*data*/, const ZRMData& /*signature*/) const {
    return false;
}

std::optional<ZRMDictionary> ZRMJwsAlgorithmHS256::protectedHeaders() const {
    return ZRMDictionary{{kZRMJwsAlgKey, kZRMJwsAlgorithmHS256Key}};
}

std::optional<ZRMDictionary> ZRMJwsAlgorithmHS256::unprotectedHeaders() const {
    return ZRMDictionary{{kZRMJwsKeyId, keyId_}};
}
