#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsAlgorithmHS256.h"
#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsAlgorithmNone.h"
#include "ZRMJWS/ZRMJWS_Lib/Signer/ZRMJwsSigner.h"

namespace {

// Signs with the text of what it was asked to sign and has no headers.
class BareAlgorithm : public ZRMJwsAlgorithm {
  public:
    [[nodiscard]] std::string name() const override { return "bare"; }
    [[nodiscard]] std::optional<ZRMData> signData(const ZRMData& data) const override {
        auto text = zrm_dataFromText("signed:");
        text.insert(text.end(), data.begin(), data.end());
        return text;
    }
    [[nodiscard]] bool verifyData(const ZRMData&, const ZRMData&) const override { return false; }
};

// The same with the headers that a test sets.
class AlgorithmWithHeaders final : public BareAlgorithm, public ZRMJwsSignatureHeadersProvider {
  public:
    AlgorithmWithHeaders(std::optional<ZRMDictionary> theProtected,
                         std::optional<ZRMDictionary> unprotected)
        : protected_(std::move(theProtected)), unprotected_(std::move(unprotected)) {}
    [[nodiscard]] std::optional<ZRMDictionary> protectedHeaders() const override {
        return protected_;
    }
    [[nodiscard]] std::optional<ZRMDictionary> unprotectedHeaders() const override {
        return unprotected_;
    }

  private:
    std::optional<ZRMDictionary> protected_;
    std::optional<ZRMDictionary> unprotected_;
};

TEST(ZRMJwsSigner, EncodesThePayloadAsBase64UrlWithoutPadding) {
    const ZRMJwsSigner signer;
    EXPECT_EQ(signer.encodedPayload(""), "");
    EXPECT_EQ(signer.encodedPayload("{}"), "e30");
    EXPECT_EQ(signer.encodedPayload("a"), "YQ");
    EXPECT_EQ(signer.encodedPayload("\xFB\xEF\xBE\xFF"), "----_w");
    EXPECT_EQ(signer.encodedPayload("ü🙂"), "w7zwn5mC");
}

TEST(ZRMJwsSigner, WrapsThePayloadAloneWithTheNoneAlgorithm) {
    const ZRMJwsAlgorithmNone none;
    EXPECT_EQ(ZRMJwsSigner().signPayload("{}", &none), ZRMJwsObject("e30", {}));
    EXPECT_EQ(ZRMJwsSigner().signPayload("", &none), ZRMJwsObject("", {}));
    EXPECT_EQ(ZRMJwsObject::jsonFromJwsObject(ZRMJwsSigner().signPayload("{}", &none)),
              (ZRMDictionary{{"payload", "e30"}, {"signatures", ZRMJsonArray()}}));
}

TEST(ZRMJwsSigner, WrapsThePayloadAloneWithoutAnAlgorithm) {
    EXPECT_EQ(ZRMJwsSigner().signPayload("{}", nullptr), ZRMJwsObject("e30", {}));
}

TEST(ZRMJwsSigner, MakesNoSignatureWithoutAProtectedHeader) {
    const BareAlgorithm bare;
    EXPECT_EQ(ZRMJwsSigner().signPayload("{}", &bare), ZRMJwsObject("e30", {}));
    EXPECT_EQ(ZRMJwsSigner().headerForAlgorithm(&bare), std::nullopt);
    const AlgorithmWithHeaders unprotectedOnly(std::nullopt, ZRMDictionary{{"kid", "1"}});
    EXPECT_EQ(ZRMJwsSigner().signPayload("{}", &unprotectedOnly), ZRMJwsObject("e30", {}));
}

TEST(ZRMJwsSigner, SignsTheProtectedHeaderAPointAndThePayload) {
    const AlgorithmWithHeaders algorithm(ZRMDictionary{{"alg", "test"}},
                                         ZRMDictionary{{"kid", "1"}});
    const std::string header = "eyJhbGciOiJ0ZXN0In0";
    EXPECT_EQ(ZRMJwsSigner().protectedHeaderForAlgorithm(&algorithm), header);
    EXPECT_EQ(ZRMJwsSigner().headerForAlgorithm(&algorithm), (ZRMDictionary{{"kid", "1"}}));
    EXPECT_EQ(
        ZRMJwsSigner().signPayload("{}", &algorithm),
        ZRMJwsObject("e30", {{"signed:" + header + ".e30", header, ZRMDictionary{{"kid", "1"}}}}));
}

TEST(ZRMJwsSigner, TakesAnEmptyProtectedHeaderForOne) {
    const AlgorithmWithHeaders algorithm(ZRMDictionary(), std::nullopt);
    EXPECT_EQ(ZRMJwsSigner().signPayload("{}", &algorithm),
              ZRMJwsObject("e30", {{"signed:e30.e30", "e30", std::nullopt}}));
}

TEST(ZRMJwsSigner, LeavesOutASignatureThatTheAlgorithmCannotMake) {
    const ZRMJwsAlgorithmHS256 inert(zrm_dataFromText("key"), "1");
    EXPECT_EQ(ZRMJwsSigner().signPayload("{}", &inert), ZRMJwsObject("e30", {}));
}

TEST(ZRMJwsSigner, LogsAProtectedHeaderThatCannotBeWrittenAndLeavesTheSignatureOut) {
    const AlgorithmWithHeaders algorithm(
        ZRMDictionary{{"n", std::numeric_limits<double>::infinity()}}, std::nullopt);
    const ZRMRecordedLog log;
    EXPECT_EQ(ZRMJwsSigner().signPayload("{}", &algorithm), ZRMJwsObject("e30", {}));
    EXPECT_THAT(log.errors(),
                testing::ElementsAre(testing::StartsWith(
                    "Can't convert protected header {\"n\":Infinity} to binary format: ")));
}

}  // namespace
