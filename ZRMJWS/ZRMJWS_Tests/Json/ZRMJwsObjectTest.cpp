#include <boost/json/parse.hpp>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsObject.h"

namespace {

ZRMDictionary dictionary(std::string_view text) {
    return boost::json::parse(boost::json::string_view(text.data(), text.size())).as_object();
}

ZRMResult<ZRMJwsObject> objectFrom(std::string_view text) {
    return ZRMJwsObject::jwsObjectFromData(zrm_dataFromText(text));
}

TEST(ZRMJwsObject, KeepsPayloadAndSignaturesInTheirOrder) {
    const ZRMJwsSignature first("1", "a", std::nullopt);
    const ZRMJwsSignature second("2", "b", std::nullopt);
    const ZRMJwsObject object("e30", {first, second});
    EXPECT_EQ(object.payload(), "e30");
    EXPECT_EQ(object.signatures(), (std::vector{first, second}));
}

TEST(ZRMJwsObject, ValidatesPayloadThenSignatures) {
    const std::pair<const char*, int> cases[] = {
        {R"({"payload":"abc","signatures":[]})", 2},
        {R"({"payload":"","signatures":[{"protected":"p","signature":"s","header":{}}]})", 2},
        {R"({})", 1},
        {R"({"signatures":[]})", 1},
        {R"({"payload":7,"signatures":[]})", 1},
        {R"({"payload":null})", 1},
        {R"({"payload":"abc"})", 0},
        {R"({"payload":"abc","signatures":{}})", 0},
        {R"({"payload":"abc","signatures":null})", 0},
        {R"({"payload":"abc","signatures":["s"]})", 0},
        {R"({"payload":"abc","signatures":[{"protected":"p","signature":"s"}]})", 0},
        {R"({"payload":"abc","signatures":[{"protected":"p","signature":"s","header":{}},{}]})", 0},
    };
    for (const auto& [json, validity] : cases) {
        EXPECT_EQ(ZRMJwsObject::validateJwsObjectJson(dictionary(json)), validity) << json;
    }
}

TEST(ZRMJwsObject, ParsesSignaturesInTheirOrder) {
    const auto object = ZRMJwsObject::jwsObjectFromJson(dictionary(
        R"({"payload":"abc","signatures":[{"protected":"p","signature":"1","header":{}},)"
        R"({"protected":"q","signature":"2","header":{"kid":"k"}}]})"));
    EXPECT_EQ(object, ZRMJwsObject("abc", {{"1", "p", ZRMDictionary()},
                                           {"2", "q", ZRMDictionary{{"kid", "k"}}}}));
}

TEST(ZRMJwsObject, TakesMissingSignaturesForNoneAlthoughTheyDoNotValidate) {
    const auto json = dictionary(R"({"payload":"abc"})");
    EXPECT_EQ(ZRMJwsObject::validateJwsObjectJson(json), ZRMJwsObjectJsonInvalidSignatures);
    EXPECT_EQ(ZRMJwsObject::jwsObjectFromJson(json), ZRMJwsObject("abc", {}));
}

TEST(ZRMJwsObject, ParsesNothingWhenAnyPartFails) {
    const ZRMRecordedLog log;
    for (const auto* json : {
             R"({})",
             R"({"signatures":[]})",
             R"({"payload":7,"signatures":[]})",
             R"({"payload":"abc","signatures":{}})",
             R"({"payload":"abc","signatures":[1]})",
             R"({"payload":"abc","signatures":[{"protected":"p","signature":"s","header":{}},{}]})",
         }) {
        EXPECT_EQ(ZRMJwsObject::jwsObjectFromJson(dictionary(json)), std::nullopt) << json;
    }
}

TEST(ZRMJwsObject, WritesPayloadAndSignatures) {
    const ZRMJwsObject object("e30", {{"s", "p", ZRMDictionary{{"kid", "k"}}}, {"t", "q", {}}});
    EXPECT_EQ(ZRMJwsObject::jsonFromJwsObject(object),
              dictionary(R"({"payload":"e30","signatures":[)"
                         R"({"signature":"s","protected":"p","header":{"kid":"k"}},)"
                         R"({"signature":"t","protected":"q"}]})"));
    EXPECT_EQ(ZRMJwsObject::jsonFromJwsObject(ZRMJwsObject("", {})),
              dictionary(R"({"payload":"","signatures":[]})"));
}

TEST(ZRMJwsObject, DoesNotValidateWhenASignatureWasWrittenWithoutHeader) {
    const auto json =
        ZRMJwsObject::jsonFromJwsObject(ZRMJwsObject("e30", {{"s", "p", std::nullopt}}));
    EXPECT_EQ(ZRMJwsObject::validateJwsObjectJson(json), ZRMJwsObjectJsonInvalidSignatures);
}

TEST(ZRMJwsObject, ReadsADocument) {
    const auto object = objectFrom(
        R"( {"signatures":[{"protected":"p","signature":"s","header":{}}],"payload":"abc"} )");
    ASSERT_TRUE(object);
    EXPECT_EQ(object.value(), ZRMJwsObject("abc", {{"s", "p", ZRMDictionary()}}));
}

TEST(ZRMJwsObject, ReportsTheValidityOfADocumentAsAnErrorWithoutUserInfo) {
    const std::pair<const char*, int> cases[] = {
        {R"({"payload":7,"signatures":[]})", 1},
        {R"({"payload":"abc","signatures":[{}]})", 0},
    };
    for (const auto& [text, code] : cases) {
        const auto object = objectFrom(text);
        ASSERT_FALSE(object) << text;
        EXPECT_EQ(object.error(), ZRMError("ZRMJwsObjectErrorDomain", code)) << text;
    }
}

TEST(ZRMJwsObject, RefusesDocumentsWhoseTopLevelIsNoDictionary) {
    for (const auto* text : {"[]", "\"payload\"", "1", "null", "true"}) {
        const auto object = objectFrom(text);
        ASSERT_FALSE(object) << text;
        EXPECT_EQ(object.error(), ZRMError(kZRMJwsObjectErrorDomain, 1)) << text;
    }
}

TEST(ZRMJwsObject, PassesOnTheReadersErrorForWhatIsNoJson) {
    for (const auto* text : {"", "{", "{\"payload\":\"\xFF\",\"signatures\":[]}", "gibberish"}) {
        const auto object = objectFrom(text);
        ASSERT_FALSE(object) << text;
        EXPECT_EQ(object.error().domain(), kZRMCocoaErrorDomain) << text;
        EXPECT_FALSE(object.error().userInfo().empty()) << text;
    }
    EXPECT_FALSE(objectFrom(std::string(100000, '[')));
}

TEST(ZRMJwsObject, RefusesDocumentsThatRepeatAKey) {
    EXPECT_FALSE(objectFrom(R"({"payload":"a","payload":"b","signatures":[]})"));
    EXPECT_FALSE(objectFrom(
        R"({"payload":"a","signatures":[{"protected":"p","signature":"s","header":{"a":1,"a":2}}]})"));
}

}  // namespace
