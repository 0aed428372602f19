#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/SecureDeviceTagProvider/ZRMSecureDeviceTagPayload.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"

namespace {

ZRMResult<ZRMSecureDeviceTagPayload> read(std::string_view json) {
    return ZRMSecureDeviceTagPayload::fromJwsPayload(
        zrm_base64UrlFromBase64String(zrm_base64String(zrm_dataFromText(json))));
}

void expectRefused(std::string_view json, const std::string& why) {
    const auto payload = read(json);
    ASSERT_FALSE(payload) << json;
    EXPECT_EQ(payload.error().localizedDescription(), why) << json;
}

}  // namespace

TEST(ZRMSecureDeviceTagPayload, HoldsTheTagInUpperCaseAndTheIntervalInSeconds) {
    EXPECT_EQ(read(R"({"uuid":"ab12-cd","i":"PT2H"})").value(),
              (ZRMSecureDeviceTagPayload{"AB12-CD", 7200}));
    EXPECT_EQ(read(R"({"i":"P1D","more":[1],"uuid":"\u00e4"})").value(),
              (ZRMSecureDeviceTagPayload{"\u00c4", 86400}));
}

TEST(ZRMSecureDeviceTagPayload, IntervalOfNoTimeIsTaken) {
    EXPECT_EQ(read(R"({"uuid":"a","i":"PT0S"})").value().refreshInterval, 0);
}

TEST(ZRMSecureDeviceTagPayload, WithoutAUsableTagIsRefused) {
    for (const auto* json :
         {R"({"i":"PT2H"})", R"({"uuid":"","i":"PT2H"})", R"({"uuid":null,"i":"PT2H"})",
          R"({"uuid":12,"i":"PT2H"})", R"({"UUID":"a","i":"PT2H"})",
          R"({"uuid":"a\r\nHost: b","i":"PT2H"})", R"({"uuid":"a\u0000","i":"PT2H"})",
          R"({"uuid":"a\u007f","i":"P1D"})"}) {
        expectRefused(json, "The payload has no usable \"uuid\".");
    }
}

TEST(ZRMSecureDeviceTagPayload, WithoutAUsableIntervalIsRefused) {
    for (const auto* json : {R"({"uuid":"a"})", R"({"uuid":"a","i":""})",
                             R"({"uuid":"a","i":7200})", R"({"uuid":"a","i":"two hours"})",
                             R"({"uuid":"a","i":"PT-1S"})", R"({"uuid":"a","i":"PT-2H"})"}) {
        expectRefused(json, "The payload has no usable \"i\".");
    }
}

TEST(ZRMSecureDeviceTagPayload, ThatIsNoJsonObjectIsRefused) {
    expectRefused("[]", "The JSON text is no object.");
    for (const auto* json : {"", "{", "{\"uuid\":\"\xFF\",\"i\":\"P1D\"}"}) {
        EXPECT_FALSE(read(json)) << json;
    }
}

TEST(ZRMSecureDeviceTagPayload, ThatRepeatsANameIsRefused) {
    EXPECT_FALSE(read(R"({"uuid":"a","uuid":"b","i":"PT2H"})"));
    EXPECT_FALSE(read(R"({"uuid":"a","i":"PT2H","x":{"y":1,"y":2}})"));
}

TEST(ZRMSecureDeviceTagPayload, ThatIsNoBase64UrlIsRefused) {
    const auto payload = ZRMSecureDeviceTagPayload::fromJwsPayload("e30 ");
    ASSERT_FALSE(payload);
    EXPECT_EQ(payload.error().localizedDescription(), "The payload is no base64url text.");
}
