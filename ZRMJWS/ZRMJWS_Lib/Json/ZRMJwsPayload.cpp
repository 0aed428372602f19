#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsPayload.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"

namespace {

ZRMError refused(const char* why) {
    return ZRMError::withDescription(kZRMCocoaErrorDomain, kZRMJsonErrorCode, why);
}

}  // namespace

ZRMResult<ZRMData> zrm_dataFromJwsPayload(std::string_view payload) {
    auto data = zrm_dataFromBase64String(zrm_base64FromBase64UrlString(payload));
    if (!data) {
        return refused("The payload is no base64url text.");
    }
    return std::move(*data);
}

ZRMResult<ZRMDictionary> zrm_jsonObjectFromSignedData(const ZRMData& data) {
    auto json = zrm_jsonFromData(data, {.refusesDuplicateNames = true});
    if (!json) {
        return json.error();
    }
    const auto* const object = json.value().if_object();
    if (object == nullptr) {
        return refused("The JSON text is no object.");
    }
    return *object;
}
