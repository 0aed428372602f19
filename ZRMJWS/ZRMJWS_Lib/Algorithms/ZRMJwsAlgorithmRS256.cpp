#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsAlgorithmRS256.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsKeys.h"

ZRMJwsAlgorithmRS256::ZRMJwsAlgorithmRS256(std::shared_ptr<ZRMDigests> digests,
                                           std::shared_ptr<const ZRMRsaKey> key)
    : digests_(std::move(digests)), key_(std::move(key)) {}

std::string ZRMJwsAlgorithmRS256::name() const {
    return kZRMJwsAlgorithmRS256Key;
}

std::optional<ZRMData> ZRMJwsAlgorithmRS256::signData(const ZRMData& data) const {
    const auto digest = digestOf(data);
    if (!digest || !key_) {
        return {};
    }
    ZRMData signature(key_->blockSize());
    std::size_t length = 0;
    if (key_->signDigest(*digest, signature, length) != 0) {
        return {};
    }
    signature.resize(length);
    return getBase64UrlBytes(signature);
}

bool ZRMJwsAlgorithmRS256::verifyData(const ZRMData& data, const ZRMData& signature) const {
    const auto digest = digestOf(data);
    return digest && key_ && key_->verifyDigest(*digest, signature) == 0;
}

std::optional<ZRMDictionary> ZRMJwsAlgorithmRS256::protectedHeaders() const {
    return ZRMDictionary{{kZRMJwsAlgKey, kZRMJwsAlgorithmRS256Key}};
}

std::optional<ZRMDictionary> ZRMJwsAlgorithmRS256::unprotectedHeaders() const {
    return {};
}

ZRMData ZRMJwsAlgorithmRS256::getBase64UrlBytes(const ZRMData& bytes) {
    return zrm_dataFromText(zrm_base64UrlFromBase64String(zrm_base64String(bytes)));
}

std::optional<ZRMData> ZRMJwsAlgorithmRS256::digestOf(const ZRMData& data) const {
    auto digest = zrm_hashSHA256(*digests_, data);
    if (!digest) {
        zrm_logError(this, "Hashing error");
    }
    return digest;
}
