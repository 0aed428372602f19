#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsPayload.h"

TEST(ZRMJwsPayload, IsDecodedAtEveryLength) {
    EXPECT_EQ(zrm_dataFromJwsPayload("").value(), ZRMData());
    EXPECT_EQ(zrm_dataFromJwsPayload("YQ").value(), zrm_dataFromText("a"));
    EXPECT_EQ(zrm_dataFromJwsPayload("YWI").value(), zrm_dataFromText("ab"));
    EXPECT_EQ(zrm_dataFromJwsPayload("YWJj").value(), zrm_dataFromText("abc"));
    EXPECT_EQ(zrm_dataFromJwsPayload("YWJjZA").value(), zrm_dataFromText("abcd"));
}

TEST(ZRMJwsPayload, TakesTheLettersOfBase64Url) {
    EXPECT_EQ(zrm_dataFromJwsPayload("-_8").value(), (ZRMData{0xFB, 0xFF}));
}

TEST(ZRMJwsPayload, IsRefusedWithForeignCharactersBlanksOrInnerPadding) {
    for (const auto* text : {"YQ ", " YQ", "Y Q", "YQ\n", "Y*", "YQ==YQ", "Y", "e30\xC3\xA4"}) {
        const auto data = zrm_dataFromJwsPayload(text);
        ASSERT_FALSE(data) << text;
        EXPECT_EQ(data.error().domain(), kZRMCocoaErrorDomain);
        EXPECT_EQ(data.error().code(), kZRMJsonErrorCode);
        EXPECT_EQ(data.error().localizedDescription(), "The payload is no base64url text.");
    }
}

TEST(ZRMSignedData, IsOneJsonObject) {
    EXPECT_EQ(zrm_jsonObjectFromSignedData(zrm_dataFromText(R"({"a":{"b":1}})")).value(),
              (ZRMDictionary{{"a", ZRMDictionary{{"b", 1}}}}));
    EXPECT_EQ(zrm_jsonObjectFromSignedData(zrm_dataFromText("{}")).value(), ZRMDictionary());
}

TEST(ZRMSignedData, IsRefusedWhenItIsNoJsonObject) {
    for (const auto* text :
         {"", "{", "[]", "[{}]", "1", "null", "\"{}\"", "{}{}", "{\"a\":\"\xFF\"}"}) {
        EXPECT_FALSE(zrm_jsonObjectFromSignedData(zrm_dataFromText(text))) << text;
    }
}

TEST(ZRMSignedData, IsRefusedWhenItRepeatsANameAtAnyDepth) {
    EXPECT_FALSE(zrm_jsonObjectFromSignedData(zrm_dataFromText(R"({"a":1,"a":1})")));
    EXPECT_FALSE(zrm_jsonObjectFromSignedData(zrm_dataFromText(R"({"c":{"a":1,"\u0061":2}})")));
    EXPECT_TRUE(zrm_jsonObjectFromSignedData(zrm_dataFromText(R"({"a":{"a":1},"b":{"a":2}})")));
}
