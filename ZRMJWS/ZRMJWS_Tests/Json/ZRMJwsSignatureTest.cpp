#include <boost/json/parse.hpp>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsSignature.h"

namespace {

ZRMDictionary signatureJson(std::string_view text) {
    return boost::json::parse(boost::json::string_view(text.data(), text.size())).as_object();
}

struct ParseCase {
    const char* json;
    const char* logged;
};

TEST(ZRMJwsSignature, KeepsItsValues) {
    const ZRMJwsSignature signature("c2ln", "cHJv", ZRMDictionary{{"kid", "1"}});
    EXPECT_EQ(signature.signature(), "c2ln");
    EXPECT_EQ(signature.protectedHeader(), "cHJv");
    EXPECT_EQ(signature.headers(), (ZRMDictionary{{"kid", "1"}}));
}

TEST(ZRMJwsSignature, ParsesAWellFormedDictionary) {
    const auto signature = ZRMJwsSignature::jwsSignatureFromJson(signatureJson(
        R"({"signature":"c2ln","protected":"cHJv","header":{"x5c":["a"]},"more":1})"));
    EXPECT_EQ(signature, ZRMJwsSignature("c2ln", "cHJv", signatureJson(R"({"x5c":["a"]})")));
}

TEST(ZRMJwsSignature, ParsesEmptyTextsAlthoughTheyDoNotValidate) {
    const auto json = signatureJson(R"({"signature":"","protected":"","header":{}})");
    EXPECT_EQ(ZRMJwsSignature::jwsSignatureFromJson(json),
              ZRMJwsSignature("", "", ZRMDictionary()));
    EXPECT_EQ(ZRMJwsSignature::validateSignatureJson(json), ZRMJwsSignatureJsonInvalidValues);
}

TEST(ZRMJwsSignature, LogsTheFirstMemberThatDoesNotParse) {
    const ParseCase cases[] = {
        {R"({})", "Invalid signature."},
        {R"({"signature":1,"protected":2,"header":3})", "Invalid signature."},
        {R"({"signature":null,"protected":"p","header":{}})", "Invalid signature."},
        {R"({"signature":"s","header":[]})", "Invalid protected headers."},
        {R"({"signature":"s","protected":["p"],"header":{}})", "Invalid protected headers."},
        {R"({"signature":"s","protected":"p"})", "Invalid headers."},
        {R"({"signature":"s","protected":"p","header":null})", "Invalid headers."},
        {R"({"signature":"s","protected":"p","header":"{}"})", "Invalid headers."},
    };
    for (const auto& [json, logged] : cases) {
        const ZRMRecordedLog log;
        EXPECT_EQ(ZRMJwsSignature::jwsSignatureFromJson(signatureJson(json)), std::nullopt) << json;
        EXPECT_EQ(log.errors(), std::vector<std::string>{logged}) << json;
    }
}

TEST(ZRMJwsSignature, WritesAllThreeMembers) {
    const ZRMJwsSignature signature("c2ln", "cHJv", ZRMDictionary{{"kid", "1"}});
    EXPECT_EQ(ZRMJwsSignature::jsonFromJwsSignature(signature),
              signatureJson(R"({"signature":"c2ln","protected":"cHJv","header":{"kid":"1"}})"));
}

TEST(ZRMJwsSignature, WritesNoHeaderWhenThereIsNoneAndThenDoesNotValidate) {
    const auto json =
        ZRMJwsSignature::jsonFromJwsSignature(ZRMJwsSignature("c2ln", "cHJv", std::nullopt));
    EXPECT_EQ(json, signatureJson(R"({"signature":"c2ln","protected":"cHJv"})"));
    EXPECT_EQ(ZRMJwsSignature::validateSignatureJson(json), ZRMJwsSignatureJsonInvalidHeader);
}

TEST(ZRMJwsSignature, ValidatesProtectedThenSignatureThenHeader) {
    const std::pair<const char*, int> cases[] = {
        {R"({"signature":"s","header":{}})", 1},
        {R"({"protected":1,"signature":"s","header":{}})", 1},
        {R"({"protected":"","signature":"s","header":{}})", 1},
        {R"({"protected":"p","header":{}})", 1},
        {R"({"protected":"p","signature":{},"header":{}})", 1},
        {R"({"protected":"p","signature":"","header":{}})", 1},
        {R"({"protected":"p","signature":"","header":1})", 1},
        {R"({"protected":"p","signature":"s"})", 2},
        {R"({"protected":"p","signature":"s","header":null})", 2},
        {R"({"protected":"p","signature":"s","header":[]})", 2},
        {R"({"protected":"p","signature":"s","header":{}})", 3},
    };
    for (const auto& [json, validity] : cases) {
        EXPECT_EQ(ZRMJwsSignature::validateSignatureJson(signatureJson(json)), validity) << json;
    }
}

}  // namespace
