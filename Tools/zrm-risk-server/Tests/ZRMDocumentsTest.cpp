#include <fstream>

#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <gmock/gmock.h>

#include "Tools/zrm-risk-server/Tests/ZRMPkiFixture.h"
#include "Tools/zrm-risk-server/ZRMBase64.h"
#include "Tools/zrm-risk-server/ZRMDocuments.h"
#include "Tools/zrm-risk-server/ZRMUpload.h"

namespace {

using testing::MatchesRegex;
using Json = boost::json::value;

constexpr const char* kUuid = "[0-9a-f]{8}-[0-9a-f]{4}-4[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}";

std::string text(const Json& value) {
    return std::string(value.as_string());
}

std::string decodedBase64Url(const std::string& encoded) {
    return zrm_decodeBase64Url(encoded);
}

// The protected header's text, read as standard base64 that must have its padding.
std::optional<std::string> decodedHeader(const std::string& encoded) {
    std::string bytes(encoded.size(), '\0');
    const int length = EVP_DecodeBlock(reinterpret_cast<unsigned char*>(bytes.data()),
                                       reinterpret_cast<const unsigned char*>(encoded.data()),
                                       static_cast<int>(encoded.size()));
    if (length < 0) {
        return std::nullopt;
    }
    bytes.resize(static_cast<std::size_t>(length) - (encoded.ends_with("==")  ? 2U
                                                     : encoded.ends_with('=') ? 1U
                                                                              : 0U));
    return bytes;
}

class ZRMDocumentsTest : public ZRMPkiFixture {
  protected:
    ZRMDocumentsTest() { write(R"({"vpnEventDisabled":"true"})"); }

    static std::filesystem::path file() { return directory() / "settings.json"; }
    static void write(const std::string& content) { std::ofstream(file()) << content; }

    ZRMDocuments documents(const ZRMMisbehaviours& misbehaviours = {},
                           const std::string& x5u = "") {
        chain_ = std::make_shared<const ZRMSigningChain>(pki(), "https://localhost:1", !x5u.empty(),
                                                         misbehaviours);
        return {chain_, ZRMDocumentSigner(chain_, x5u, misbehaviours), file(), "PT2H",
                misbehaviours};
    }
    Json settings(const ZRMMisbehaviours& misbehaviours = {}, const std::string& x5u = "") {
        return boost::json::parse(*documents(misbehaviours, x5u).settings());
    }
    static Json payload(const Json& object) {
        return boost::json::parse(decodedBase64Url(text(object.at("payload"))));
    }
    // Whether the signature of that number is the chain's over header and payload.
    [[nodiscard]] bool isSigned(const Json& object, std::size_t index = 0) const {
        const auto& signature = object.at("signatures").at(index);
        const auto input = text(signature.at("protected")) + "." + text(object.at("payload"));
        const auto bytes = decodedBase64Url(text(signature.at("signature")));
        const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> context(EVP_MD_CTX_new(),
                                                                         EVP_MD_CTX_free);
        EVP_DigestVerifyInit(context.get(), nullptr, EVP_sha256(), nullptr, chain_->key());
        return EVP_DigestVerify(context.get(), reinterpret_cast<const unsigned char*>(bytes.data()),
                                bytes.size(), reinterpret_cast<const unsigned char*>(input.data()),
                                input.size()) == 1;
    }
    static std::optional<std::string> header(const Json& object) {
        return decodedHeader(text(object.at("signatures").at(0).at("protected")));
    }

    std::shared_ptr<const ZRMSigningChain> chain_;
};

TEST_F(ZRMDocumentsTest, SettingsAreTheFileUnderConfigSignedWithRs256) {
    const auto object = settings();
    EXPECT_EQ(boost::json::serialize(payload(object)), R"({"config":{"vpnEventDisabled":"true"}})");
    EXPECT_EQ(object.at("signatures").as_array().size(), 1U);
    EXPECT_EQ(header(object), R"({"alg":"RS256"})");
    EXPECT_TRUE(isSigned(object));
}

TEST_F(ZRMDocumentsTest, ChainStandsInTheUnprotectedHeader) {
    const auto object = settings();
    const auto& x5c = object.at("signatures").at(0).at("header").at("x5c").as_array();
    ASSERT_EQ(x5c.size(), 2U);
    EXPECT_EQ(text(x5c[0]), zrm_base64Text(chain_->certificates()[0]));
}

TEST_F(ZRMDocumentsTest, ChainIsOnlyNamedWhenAskedFor) {
    const auto object = settings({}, "https://localhost:1/certificates/signing.crt");
    EXPECT_EQ(boost::json::serialize(object.at("signatures").at(0).at("header")),
              R"({"x5u":"https://localhost:1/certificates/signing.crt"})");
    EXPECT_TRUE(isSigned(object));
}

TEST_F(ZRMDocumentsTest, SettingsFileIsReadAnewForEachRequest) {
    const auto documents = this->documents();
    write("{}");
    EXPECT_EQ(boost::json::serialize(payload(boost::json::parse(*documents.settings()))),
              R"({"config":{}})");
    std::filesystem::remove(file());
    EXPECT_EQ(documents.settings(), std::nullopt);
}

TEST_F(ZRMDocumentsTest, SettingsFileThatIsNoObjectCannotBeServed) {
    for (const auto* content : {"", "[]", "{", "1"}) {
        write(content);
        EXPECT_THROW(static_cast<void>(documents().settings()), ZRMUnusableSettings) << content;
    }
}

TEST_F(ZRMDocumentsTest, TagIsNewUnlessTheDeviceShowsOne) {
    const auto documents = this->documents();
    for (const auto* shown : {"", "L!3F2504E0-4F89-41D3-9A0C-0305E82C3301", "nonsense",
                              "3f2504e0-4f89-41d3-9a0c-0305e82c3301"}) {
        const auto content = payload(boost::json::parse(documents.tag(shown)));
        EXPECT_THAT(text(content.at("uuid")), MatchesRegex(kUuid)) << shown;
        EXPECT_NE(text(content.at("uuid")), "3f2504e0-4f89-41d3-9a0c-0305e82c3301");
        EXPECT_EQ(text(content.at("i")), "PT2H");
    }
    const auto kept =
        payload(boost::json::parse(documents.tag("3F2504E0-4F89-41D3-9A0C-0305E82C3301")));
    EXPECT_EQ(text(kept.at("uuid")), "3f2504e0-4f89-41d3-9a0c-0305e82c3301");
}

TEST_F(ZRMDocumentsTest, WrongKeyDoesNotSignForTheLeaf) {
    const auto object = settings({ZRMMisbehaviour::WrongKey});
    EXPECT_FALSE(isSigned(object));
}

TEST_F(ZRMDocumentsTest, MissingSignaturesAreLeftOut) {
    EXPECT_FALSE(settings({ZRMMisbehaviour::MissingSignatures}).as_object().contains("signatures"));
}

TEST_F(ZRMDocumentsTest, BadSecondSignatureStandsBesideAGoodOne) {
    const auto object = settings({ZRMMisbehaviour::BadSecondSignature});
    EXPECT_EQ(object.at("signatures").as_array().size(), 2U);
    EXPECT_TRUE(isSigned(object, 0));
    EXPECT_FALSE(isSigned(object, 1));
}

TEST_F(ZRMDocumentsTest, CorruptedPayloadSaysTheSameAndIsNotWhatWasSigned) {
    const auto object = settings({ZRMMisbehaviour::CorruptedPayload});
    EXPECT_EQ(boost::json::serialize(payload(object)), R"({"config":{"vpnEventDisabled":"true"}})");
    EXPECT_FALSE(isSigned(object));
}

TEST_F(ZRMDocumentsTest, MissingConfigLeavesTheContentUnderAnotherName) {
    EXPECT_FALSE(
        payload(settings({ZRMMisbehaviour::MissingConfig})).as_object().contains("config"));
    const auto tag = boost::json::parse(documents({ZRMMisbehaviour::MissingConfig}).tag(""));
    EXPECT_FALSE(payload(tag).as_object().contains("uuid"));
}

TEST_F(ZRMDocumentsTest, OutOfRangeBreaksTheRulesOfSomeKeysAndKeepsTheOthers) {
    const auto object = settings({ZRMMisbehaviour::OutOfRange});
    const auto config = payload(object).at("config").as_object();
    EXPECT_EQ(text(config.at("configUpdateInterval")), "soon");
    EXPECT_TRUE(isSigned(object));
    const auto tag = boost::json::parse(documents({ZRMMisbehaviour::OutOfRange}).tag(""));
    EXPECT_EQ(text(payload(tag).at("i")), "PT-2H");
}

TEST_F(ZRMDocumentsTest, UnpaddedHeaderLacksPaddingAndIsSignedAsItStands) {
    const auto object = settings({ZRMMisbehaviour::UnpaddedHeader});
    EXPECT_NE(text(object.at("signatures").at(0).at("protected")).size() % 4, 0U);
    EXPECT_EQ(header(object), std::nullopt);
    EXPECT_TRUE(isSigned(object));
}

TEST_F(ZRMDocumentsTest, OtherAlgorithmsAreOnlyNamed) {
    EXPECT_EQ(header(settings({ZRMMisbehaviour::AlgHS256})), R"({"alg":"HS256"})");
    const auto none = settings({ZRMMisbehaviour::AlgNone});
    EXPECT_EQ(header(none), R"({"alg":"None"})");
    EXPECT_TRUE(isSigned(none));
}

TEST(ZRMIsoDuration, IsTakenAsItIsOrMadeOfANumberWithItsUnit) {
    EXPECT_EQ(zrm_isoDurationFromText("PT2H"), "PT2H");
    EXPECT_EQ(zrm_isoDurationFromText("P1D"), "P1D");
    EXPECT_EQ(zrm_isoDurationFromText("90s"), "PT90S");
    EXPECT_EQ(zrm_isoDurationFromText("30m"), "PT30M");
    EXPECT_EQ(zrm_isoDurationFromText("2h"), "PT2H");
    for (const auto* text : {"", "s", "P", "90", "-1s", "1.5h", "2d", "1234567890s"}) {
        EXPECT_EQ(zrm_isoDurationFromText(text), std::nullopt) << text;
    }
}

TEST(ZRMMisbehaviour, HasANameForEachThatTheHelpTells) {
    for (const auto* name :
         {"wrong-key", "expired-leaf", "revoked-leaf", "foreign-root", "missing-signatures",
          "bad-second-signature", "corrupted-payload", "missing-config", "out-of-range",
          "unpadded-header", "alg-hs256", "alg-none"}) {
        EXPECT_TRUE(zrm_misbehaviourFromText(name)) << name;
        EXPECT_THAT(zrm_misbehavioursHelp(), testing::HasSubstr(std::string(name) + ": "));
    }
    EXPECT_EQ(zrm_misbehaviourFromText("wrong"), std::nullopt);
    EXPECT_EQ(zrm_misbehaviourFromText(""), std::nullopt);
}

}  // namespace
