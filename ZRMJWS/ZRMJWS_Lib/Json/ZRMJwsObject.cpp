#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsObject.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsKeys.h"

namespace {

ZRMError validityError(ZRMJwsObjectJsonValidity validity) {
    return {kZRMJwsObjectErrorDomain, validity};
}

// Absent when the array is none or an element fails.
std::optional<std::vector<ZRMJwsSignature>> signaturesFromJson(const ZRMJsonValue& json) {
    const auto* array = json.if_array();
    if (array == nullptr) {
        return {};
    }
    std::vector<ZRMJwsSignature> signatures;
    for (const auto& element : *array) {
        const auto* dictionary = element.if_object();
        auto signature = ZRMJwsSignature::jwsSignatureFromJson(
            dictionary == nullptr ? ZRMDictionary() : *dictionary);
        if (!signature) {
            return {};
        }
        signatures.push_back(std::move(*signature));
    }
    return signatures;
}

bool isValidSignature(const ZRMJsonValue& json) {
    const auto* dictionary = json.if_object();
    return dictionary != nullptr &&
           ZRMJwsSignature::validateSignatureJson(*dictionary) == ZRMJwsSignatureJsonValid;
}

}  // namespace

ZRMJwsObject::ZRMJwsObject(std::string payload, std::vector<ZRMJwsSignature> signatures)
    : payload_(std::move(payload)), signatures_(std::move(signatures)) {}

ZRMResult<ZRMJwsObject> ZRMJwsObject::jwsObjectFromData(const ZRMData& data) {
    const auto json = zrm_jsonFromData(data, {.refusesDuplicateNames = true});
    if (!json) {
        return json.error();
    }
    const auto* dictionary = json.value().if_object();
    if (dictionary == nullptr) {
        return validityError(ZRMJwsObjectJsonInvalidPayload);
    }
    const auto validity = validateJwsObjectJson(*dictionary);
    if (validity != ZRMJwsObjectJsonValid) {
        return validityError(validity);
    }
    // What is valid parses: the checks of the parser are among those of the validation.
    return jwsObjectFromJson(*dictionary).value();
}

std::optional<ZRMJwsObject> ZRMJwsObject::jwsObjectFromJson(const ZRMDictionary& json) {
    const auto* payload = json.if_contains(kZRMJwsPayloadKey);
    if (payload == nullptr || !payload->is_string()) {
        return {};
    }
    const auto* array = json.if_contains(kZRMJwsSignaturesKey);
    auto signatures = signaturesFromJson(array == nullptr ? ZRMJsonValue(ZRMJsonArray()) : *array);
    if (!signatures) {
        return {};
    }
    return ZRMJwsObject(std::string(payload->get_string()), std::move(*signatures));
}

ZRMDictionary ZRMJwsObject::jsonFromJwsObject(const ZRMJwsObject& object) {
    ZRMJsonArray signatures;
    for (const auto& signature : object.signatures()) {
        signatures.push_back(ZRMJwsSignature::jsonFromJwsSignature(signature));
    }
    ZRMDictionary json;
    json[kZRMJwsPayloadKey] = object.payload();
    json[kZRMJwsSignaturesKey] = std::move(signatures);
    return json;
}

ZRMJwsObjectJsonValidity ZRMJwsObject::validateJwsObjectJson(const ZRMDictionary& json) {
    const auto* payload = json.if_contains(kZRMJwsPayloadKey);
    if (payload == nullptr || !payload->is_string()) {
        return ZRMJwsObjectJsonInvalidPayload;
    }
    const auto* signatures = json.if_contains(kZRMJwsSignaturesKey);
    if (signatures == nullptr || !signatures->is_array()) {
        return ZRMJwsObjectJsonInvalidSignatures;
    }
    for (const auto& signature : signatures->get_array()) {
        if (!isValidSignature(signature)) {
            return ZRMJwsObjectJsonInvalidSignatures;
        }
    }
    return ZRMJwsObjectJsonValid;
}
