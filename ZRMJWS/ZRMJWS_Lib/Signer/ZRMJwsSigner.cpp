#include "ZRMJWS/ZRMJWS_Lib/Signer/ZRMJwsSigner.h"

#include <cstdint>
#include <utility>
#include <vector>

#include <boost/json/serialize.hpp>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsSignatureHeadersProvider.h"

namespace {

std::string base64UrlText(const std::string& text) {
    return zrm_base64UrlString({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

const ZRMJwsSignatureHeadersProvider* headersProvider(const ZRMJwsAlgorithm* algorithm) {
    return dynamic_cast<const ZRMJwsSignatureHeadersProvider*>(algorithm);
}

}  // namespace

ZRMJwsObject ZRMJwsSigner::signPayload(const std::string& payload,
                                       const ZRMJwsAlgorithm* algorithm) const {
    auto encoded = encodedPayload(payload);
    std::vector<ZRMJwsSignature> signatures;
    if (auto protectedHeader = protectedHeaderForAlgorithm(algorithm)) {
        const auto signature =
            algorithm->signData(zrm_dataFromText(*protectedHeader + "." + encoded));
        if (signature) {
            signatures.emplace_back(zrm_textFromData(*signature), std::move(*protectedHeader),
                                    headerForAlgorithm(algorithm));
        }
    }
    return {std::move(encoded), std::move(signatures)};
}

std::string ZRMJwsSigner::encodedPayload(const std::string& payload) const {
    return base64UrlText(payload);
}

std::optional<std::string> ZRMJwsSigner::protectedHeaderForAlgorithm(
    const ZRMJwsAlgorithm* algorithm) const {
    const auto* provider = headersProvider(algorithm);
    const auto headers = provider == nullptr ? std::nullopt : provider->protectedHeaders();
    if (!headers) {
        return {};
    }
    const auto json = zrm_compactJsonText(*headers);
    if (!json) {
        zrm_logError(this, "Can't convert protected header " + boost::json::serialize(*headers) +
                               " to binary format: " + json.error().localizedDescription());
        return {};
    }
    return base64UrlText(json.value());
}

std::optional<ZRMDictionary> ZRMJwsSigner::headerForAlgorithm(
    const ZRMJwsAlgorithm* algorithm) const {
    const auto* provider = headersProvider(algorithm);
    return provider == nullptr ? std::nullopt : provider->unprotectedHeaders();
}
