#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMTestEvent.h"

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"

std::string zrm_testEventName(const ZRMData& body) {
    const auto jws = zrm_jsonFromData(zrm_ungzipData(body)).value();
    const std::string payload(jws.at("payload").as_string());
    const auto json = zrm_dataFromBase64String(zrm_base64FromBase64UrlString(payload)).value();
    return std::string(
        zrm_jsonFromData(json).value().at("array").at(0).at("TEST").at("name").as_string());
}
