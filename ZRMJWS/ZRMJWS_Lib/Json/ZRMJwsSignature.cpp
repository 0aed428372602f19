#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsSignature.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsKeys.h"

namespace {

const boost::json::string* textForKey(const ZRMDictionary& json, const char* key) {
    const auto* value = json.if_contains(key);
    return value == nullptr ? nullptr : value->if_string();
}

const ZRMDictionary* dictionaryForKey(const ZRMDictionary& json, const char* key) {
    const auto* value = json.if_contains(key);
    return value == nullptr ? nullptr : value->if_object();
}

bool hasContent(const boost::json::string* text) {
    return text != nullptr && !text->empty();
}

}  // namespace

ZRMJwsSignature::ZRMJwsSignature(std::string signature, std::string protectedHeader,
                                 std::optional<ZRMDictionary> headers)
    : signature_(std::move(signature)),
      protectedHeader_(std::move(protectedHeader)),
      headers_(std::move(headers)) {}

std::optional<ZRMJwsSignature> ZRMJwsSignature::jwsSignatureFromJson(const ZRMDictionary& json) {
    const auto* signature = textForKey(json, kZRMJwsSignatureKey);
    if (signature == nullptr) {
        zrm_logError(nullptr, "Invalid signature.");
        return {};
    }
    const auto* protectedHeader = textForKey(json, kZRMJwsProtectedKey);
    if (protectedHeader == nullptr) {
        zrm_logError(nullptr, "Invalid protected headers.");
        return {};
    }
    const auto* headers = dictionaryForKey(json, kZRMJwsHeaderKey);
    if (headers == nullptr) {
        zrm_logError(nullptr, "Invalid headers.");
        return {};
    }
    return ZRMJwsSignature(std::string(*signature), std::string(*protectedHeader), *headers);
}

ZRMDictionary ZRMJwsSignature::jsonFromJwsSignature(const ZRMJwsSignature& signature) {
    ZRMDictionary json;
    json[kZRMJwsSignatureKey] = signature.signature();
    json[kZRMJwsProtectedKey] = signature.protectedHeader();
    if (signature.headers()) {
        json[kZRMJwsHeaderKey] = *signature.headers();
    }
    return json;
}

ZRMJwsSignatureJsonValidity ZRMJwsSignature::validateSignatureJson(const ZRMDictionary& json) {
    if (!hasContent(textForKey(json, kZRMJwsProtectedKey)) ||
        !hasContent(textForKey(json, kZRMJwsSignatureKey))) {
        return ZRMJwsSignatureJsonInvalidValues;
    }
    if (dictionaryForKey(json, kZRMJwsHeaderKey) == nullptr) {
        return ZRMJwsSignatureJsonInvalidHeader;
    }
    return ZRMJwsSignatureJsonValid;
}
