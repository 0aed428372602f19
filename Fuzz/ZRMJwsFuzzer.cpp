// JWS objects: reading bytes, validating and parsing agree, and what was read writes back.
#include "Fuzz/ZRMFuzz.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsObject.h"

void zrm_fuzz(std::span<const std::uint8_t> input) {
    const auto object = ZRMJwsObject::jwsObjectFromData({input.begin(), input.end()});
    const auto json = zrm_jsonFromData(input, {.refusesDuplicateNames = true});
    const auto* dictionary = json ? json.value().if_object() : nullptr;
    if (dictionary == nullptr) {
        ZRM_FUZZ_ASSERT(!object);
        ZRM_FUZZ_ASSERT(!json || object.error().code() == ZRMJwsObjectJsonInvalidPayload);
        return;
    }
    const auto validity = ZRMJwsObject::validateJwsObjectJson(*dictionary);
    const auto parsed = ZRMJwsObject::jwsObjectFromJson(*dictionary);
    ZRM_FUZZ_ASSERT(static_cast<bool>(object) == (validity == ZRMJwsObjectJsonValid));
    if (!object) {
        ZRM_FUZZ_ASSERT(object.error() == ZRMError(kZRMJwsObjectErrorDomain, validity));
        return;
    }
    ZRM_FUZZ_ASSERT(parsed == object.value());
    const auto written = ZRMJwsObject::jsonFromJwsObject(object.value());
    ZRM_FUZZ_ASSERT(ZRMJwsObject::jwsObjectFromJson(written) == object.value());
    ZRM_FUZZ_ASSERT(ZRMJwsObject::validateJwsObjectJson(written) == ZRMJwsObjectJsonValid);
}
