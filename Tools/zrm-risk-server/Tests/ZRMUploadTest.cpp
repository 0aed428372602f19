#include <ostream>

#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tools/zrm-risk-server/Tests/ZRMUploadSamples.h"
#include "Tools/zrm-risk-server/ZRMUpload.h"

namespace {

std::string refusalOf(const ZRMServerRequest& request) {
    try {
        zrm_readUpload(request);
        return "accepted";
    } catch (const ZRMMalformedUpload& malformed) {
        return malformed.what();
    }
}

std::string refusalOfDocument(const std::string& document) {
    return refusalOf(zrm_uploadRequest(zrm_gzipped(document)));
}

std::string refusalOfPayload(const std::string& payload) {
    return refusalOf(zrm_uploadRequest(zrm_uploadBody(payload)));
}

TEST(ZRMUpload, YieldsTheEventAndItsType) {
    const auto upload = zrm_readUpload(zrm_uploadRequest());
    EXPECT_EQ(upload.eventType, "LOGIN");
    EXPECT_EQ(boost::json::serialize(upload.event), R"({"LOGIN":{"userId":"u1"}})");
}

TEST(ZRMUpload, SetsLetterCaseOfHeadersAside) {
    auto request = zrm_uploadRequest();
    for (auto& [name, value] : request.headers) {
        std::transform(name.begin(), name.end(), name.begin(), [](unsigned char letter) {
            return static_cast<char>(std::tolower(letter));
        });
    }
    EXPECT_EQ(refusalOf(request), "accepted");
}

struct SpoiledHeader {
    const char* name;
    const char* value;  // null: the header is taken out
    const char* reason;
};

void PrintTo(const SpoiledHeader& spoiled, std::ostream* out) {
    *out << spoiled.name << ": " << (spoiled.value == nullptr ? "(none)" : spoiled.value);
}

class ZRMUploadHeaders : public testing::TestWithParam<SpoiledHeader> {};

TEST_P(ZRMUploadHeaders, AreRefusedWhenSpoiled) {
    const auto& spoiled = GetParam();
    auto request = zrm_uploadRequest();
    std::erase_if(request.headers, [&](const auto& field) { return field.first == spoiled.name; });
    if (spoiled.value != nullptr) {
        request.headers.emplace_back(spoiled.name, spoiled.value);
    }
    EXPECT_EQ(refusalOf(request), spoiled.reason);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ZRMUploadHeaders,
    testing::Values(
        SpoiledHeader{"Content-Type", nullptr, "header Content-Type is not application/jose+json"},
        SpoiledHeader{"Content-Type", "application/json",
                      "header Content-Type is not application/jose+json"},
        SpoiledHeader{"Content-Encoding", nullptr, "header Content-Encoding is not gzip"},
        SpoiledHeader{"Content-Encoding", "deflate", "header Content-Encoding is not gzip"},
        SpoiledHeader{"Request-Send-Timestamp", nullptr,
                      "header Request-Send-Timestamp is not a decimal number"},
        SpoiledHeader{"Request-Send-Timestamp", "",
                      "header Request-Send-Timestamp is not a decimal number"},
        SpoiledHeader{"Request-Send-Timestamp", "17.5",
                      "header Request-Send-Timestamp is not a decimal number"},
        SpoiledHeader{"Mobile-UUID", nullptr, "header Mobile-UUID is missing"}));

TEST(ZRMUpload, RefusesABodyThatIsNotWholeGzip) {
    EXPECT_EQ(refusalOf(zrm_uploadRequest("")), "the body is not whole gzip data");
    EXPECT_EQ(refusalOf(zrm_uploadRequest("{}")), "the body is not whole gzip data");
    const auto whole = zrm_uploadBody(kZRMSamplePayload);
    EXPECT_EQ(refusalOf(zrm_uploadRequest(whole.substr(0, whole.size() - 1))),
              "the body is not whole gzip data");
    auto damaged = whole;
    damaged[damaged.size() - 6] = static_cast<char>(damaged[damaged.size() - 6] ^ 1);
    EXPECT_EQ(refusalOf(zrm_uploadRequest(damaged)), "the body is not whole gzip data");
    EXPECT_EQ(refusalOf(zrm_uploadRequest(whole + "x")), "the body goes on after its gzip data");
}

TEST(ZRMUpload, RefusesABodyThatDecompressesToTooMuch) {
    EXPECT_EQ(refusalOfDocument(std::string(17UL * 1024 * 1024, ' ')),
              "the body decompresses to more than is allowed");
}

TEST(ZRMUpload, InflatesUpToTheLimitAndNoFurther) {
    const auto bytes = zrm_gzipped(std::string(100000, 'a'));
    EXPECT_EQ(zrm_inflateGzip(bytes, 100000).size(), 100000U);
    EXPECT_THROW(zrm_inflateGzip(bytes, 99999), ZRMMalformedUpload);
}

TEST(ZRMUpload, RefusesADocumentThatIsNoUnsignedJws) {
    EXPECT_THAT(refusalOfDocument("{"), testing::StartsWith("the decompressed body is not JSON"));
    EXPECT_THAT(refusalOfDocument(std::string(100000, '[')),
                testing::StartsWith("the decompressed body is not JSON"));
    EXPECT_EQ(refusalOfDocument("[]"), "the decompressed body is not a JSON object");
    EXPECT_EQ(refusalOfDocument("{}"), "the JWS object has no payload text");
    EXPECT_EQ(refusalOfDocument(R"({"payload":1,"signatures":[]})"),
              "the JWS object has no payload text");
    EXPECT_EQ(refusalOfDocument(R"({"payload":""})"), "the JWS object has no signatures array");
    EXPECT_EQ(refusalOfDocument(R"({"payload":"","signatures":{}})"),
              "the JWS object has no signatures array");
    EXPECT_EQ(refusalOfDocument(R"({"payload":"","signatures":[{}]})"),
              "the JWS object of an event carries signatures");
}

TEST(ZRMUpload, RefusesAPayloadThatIsNotBase64Url) {
    const auto refusal = [](const std::string& payload) {
        return refusalOfDocument(R"({"payload":")" + payload + R"(","signatures":[]})");
    };
    EXPECT_EQ(refusal("YQ=="), "the payload is not base64url");
    EXPECT_EQ(refusal("ab+c"), "the payload is not base64url");
    EXPECT_EQ(refusal("ab/c"), "the payload is not base64url");
    EXPECT_EQ(refusal("\u00e4b"), "the payload is not base64url");
    EXPECT_EQ(refusal("abcde"), "the payload is cut base64url");
    EXPECT_EQ(refusal("YR"), "the payload's base64url ends in stray bits");
}

TEST(ZRMUpload, RefusesAPayloadThatHoldsNotExactlyOneEvent) {
    EXPECT_THAT(refusalOfPayload("x"), testing::StartsWith("the payload is not JSON"));
    EXPECT_EQ(refusalOfPayload("[]"), "the payload is not a JSON object");
    EXPECT_EQ(refusalOfPayload("{}"), "the payload has no array");
    EXPECT_EQ(refusalOfPayload(R"({"array":{}})"), "the payload has no array");
    EXPECT_EQ(refusalOfPayload(R"({"array":[]})"), "the payload does not hold exactly one event");
    EXPECT_EQ(refusalOfPayload(R"({"array":[{"A":{}},{"B":{}}]})"),
              "the payload does not hold exactly one event");
    EXPECT_EQ(refusalOfPayload(R"({"array":[{"A":{}}],"more":1})"),
              "the payload does not hold exactly one event");
    EXPECT_EQ(refusalOfPayload(R"({"array":[1]})"), "the event is not an object with one member");
    EXPECT_EQ(refusalOfPayload(R"({"array":[{}]})"), "the event is not an object with one member");
    EXPECT_EQ(refusalOfPayload(R"({"array":[{"A":{},"B":{}}]})"),
              "the event is not an object with one member");
    EXPECT_EQ(refusalOfPayload(R"({"array":[{"A":1}]})"),
              "the event's member is not a named object");
    EXPECT_EQ(refusalOfPayload(R"({"array":[{"":{}}]})"),
              "the event's member is not a named object");
}

TEST(ZRMUpload, DecodesEveryLengthOfBase64Url) {
    std::string bytes;
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(zrm_decodeBase64Url(zrm_base64Url(bytes)), bytes);
        bytes.push_back(static_cast<char>(255 - i));
    }
}

}  // namespace
