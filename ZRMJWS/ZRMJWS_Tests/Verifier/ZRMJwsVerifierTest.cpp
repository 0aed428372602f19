#include <gmock/gmock.h>

#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMJwsVerifier.h"
#include "ZRMJWS/ZRMJWS_Tests/Support/ZRMJwsVerifierFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ZRMJwsVerifierTest : public ZRMJwsVerifierFixture {
  protected:
    // Whether there is an operation for a signature with that protected header.
    bool hasOperation(const std::string& protectedHeader) {
        const ZRMJwsSignature signature("c2ln", protectedHeader, ZRMDictionary());
        return verifier_.verifyOperationForSignature(signature, payload_) != nullptr;
    }
    bool hasOperationForJson(const std::string& header) { return hasOperation(base64Of(header)); }

    using Answer = std::pair<ZRMJwsVerifyResult, std::optional<ZRMError>>;
    void start(ZRMJwsVerifier& verifier, const ZRMJwsSignature& signature) {
        verifier.verifyJwsSignature(
            signature, payload_, [this](ZRMJwsVerifyResult result, std::optional<ZRMError> error) {
                answers_.emplace_back(result, std::move(error));
            });
    }

    ZRMJwsVerifier verifier_{device_.platform(), configuration_};
    std::vector<Answer> answers_;
};

TEST_F(ZRMJwsVerifierTest, TheOperationHoldsSignaturePayloadAndPinnedChain) {
    const auto signature = goodSignature();
    const auto operation = verifier_.verifyOperationForSignature(signature, payload_);
    ASSERT_NE(operation, nullptr);
    EXPECT_EQ(operation->jwsSignature(), signature);
    EXPECT_EQ(operation->payload(), payload_);
    EXPECT_EQ(operation->certificateChain(), std::vector<ZRMData>{root_.pem()});
    EXPECT_EQ(operation->result(), ZRMJwsVerifyResultNone);
    EXPECT_THAT(log_.errors(), IsEmpty());
}

TEST_F(ZRMJwsVerifierTest, AHeaderThatLostItsPaddingIsCorrupt) {
    const std::string header = R"({"alg":"RS256" })";
    ASSERT_TRUE(hasOperation(base64Of(header)));
    ASSERT_TRUE(base64Of(header).ends_with("=="));
    EXPECT_FALSE(hasOperation(base64UrlOf(zrm_dataFromText(header))));
    EXPECT_THAT(log_.errors(), ElementsAre("Corrupted protected header."));
}

TEST_F(ZRMJwsVerifierTest, AHeaderWithSurplusPaddingIsRead) {
    EXPECT_TRUE(hasOperation(protectedHeader_ + "="));
    EXPECT_TRUE(hasOperation(protectedHeader_ + "==="));
}

TEST_F(ZRMJwsVerifierTest, EveryLengthOfAHeaderIsReadWithItsPaddingAndNoneWithoutThat) {
    for (std::size_t blanks = 0; blanks < 12; ++blanks) {
        const auto header = R"({"alg":"RS256")" + std::string(blanks, ' ') + "}";
        const auto padded = base64Of(header);
        EXPECT_TRUE(hasOperation(padded)) << blanks;
        const auto bare = padded.substr(0, padded.find('='));
        EXPECT_EQ(hasOperation(bare), bare == padded) << blanks;
    }
}

TEST_F(ZRMJwsVerifierTest, ForeignCharactersInnerPaddingAndBlanksAreCorrupt) {
    // Its base64 holds "/", which base64url writes "_".
    const auto slashed = base64Of(R"({"alg":"RS256","x":"???"})");
    ASSERT_NE(slashed.find('/'), std::string::npos);
    ASSERT_TRUE(hasOperation(slashed));
    for (const auto& text :
         {zrm_base64UrlFromBase64String(slashed), " " + protectedHeader_, protectedHeader_ + " ",
          protectedHeader_ + "\n", protectedHeader_.substr(0, 8) + "=" + protectedHeader_.substr(8),
          protectedHeader_ + "!", std::string("A")}) {
        EXPECT_FALSE(hasOperation(text)) << text;
        EXPECT_EQ(log_.errors().back(), "Corrupted protected header.");
    }
}

TEST_F(ZRMJwsVerifierTest, AJsonErrorIsLoggedBeforeTheCorruption) {
    EXPECT_FALSE(hasOperationForJson(R"({"alg":)"));
    const auto errors = log_.errors();
    ASSERT_EQ(errors.size(), 2u);
    EXPECT_FALSE(errors[0].empty());
    EXPECT_EQ(errors[1], "Corrupted protected header.");
}

TEST_F(ZRMJwsVerifierTest, AHeaderThatIsNoDictionaryIsCorrupt) {
    for (const char* header : {R"(["alg","RS256"])", R"("RS256")", "null", "1"}) {
        EXPECT_FALSE(hasOperationForJson(header)) << header;
    }
    EXPECT_THAT(log_.errors(), testing::Each("Corrupted protected header."));
}

TEST_F(ZRMJwsVerifierTest, AHeaderThatRepeatsAMemberIsCorrupt) {
    EXPECT_FALSE(hasOperationForJson(R"({"alg":"None","alg":"RS256"})"));
    EXPECT_EQ(log_.errors().back(), "Corrupted protected header.");
}

TEST_F(ZRMJwsVerifierTest, AnAlgorithmThatIsMissingEmptyOrNoTextIsNone) {
    for (const char* header : {"{}", R"({"alg":""})", R"({"alg":1})", R"({"alg":null})",
                               R"({"alg":["RS256"]})", R"({"ALG":"RS256"})"}) {
        EXPECT_FALSE(hasOperationForJson(header)) << header;
    }
    EXPECT_THAT(log_.errors(),
                testing::Each("Algorithm name for JWS Signature is empty or has invalid format"));
}

TEST_F(ZRMJwsVerifierTest, OnlyRs256IsFound) {
    for (const char* name : {"HS256", "None", "none", "rs256", "RS384", "RS512", "PS256", "ES256",
                             "EdDSA", "RS256 ", " RS256", "RS256\\u0000"}) {
        EXPECT_FALSE(hasOperationForJson(R"({"alg":")" + std::string(name) + R"("})")) << name;
    }
    EXPECT_THAT(log_.errors(), testing::Each("Algorithm for JWS Signature not found"));
    EXPECT_TRUE(hasOperationForJson(R"({"alg":"RS256"})"));
}

TEST_F(ZRMJwsVerifierTest, AnswersWithTheOperationsResult) {
    start(verifier_, goodSignature());
    EXPECT_THAT(answers_, IsEmpty());
    device_.runUntilIdle();
    EXPECT_EQ(answers_, (std::vector<Answer>{{ZRMJwsVerifyResultVerified, std::nullopt}}));
}

TEST_F(ZRMJwsVerifierTest, AnswersWithTheOperationsError) {
    device_.network().handleEverything([](const ZRMUrlRequest&) {
        return ZRMSimulatedAnswer::withError(ZRMUrlErrorCannotFindHost);
    });
    start(verifier_, signatureBy(leaf_, x5u("https://pki.example/chain")));
    device_.runUntilIdle();
    ASSERT_EQ(answers_.size(), 1u);
    EXPECT_EQ(answers_[0].first, ZRMJwsVerifyResultDownloadFailed);
    ASSERT_TRUE(answers_[0].second);
    EXPECT_EQ(answers_[0].second->domain(), kZRMUrlErrorDomain);
    EXPECT_EQ(answers_[0].second->code(), ZRMUrlErrorCannotFindHost);
}

TEST_F(ZRMJwsVerifierTest, ASignatureWithoutAnOperationIsAnsweredWithoutResultAndError) {
    start(verifier_, {"c2ln", "corrupt", ZRMDictionary()});
    EXPECT_THAT(answers_, IsEmpty());
    device_.runUntilIdle();
    EXPECT_EQ(answers_, (std::vector<Answer>{{ZRMJwsVerifyResultNone, std::nullopt}}));
}

TEST_F(ZRMJwsVerifierTest, VerifiesOneSignatureAfterTheOther) {
    device_.network().handle("/slow", [this](const ZRMUrlRequest&) {
        return ZRMSimulatedAnswer::withBody(zrm_textFromData(leaf_.pem())).after(5);
    });
    configuration_ = ZRMJwsVerifierConfiguration({root_.pem(), intermediate_.pem()});
    ZRMJwsVerifier verifier(device_.platform(), configuration_);
    start(verifier, signatureBy(leaf_, x5u("https://pki.example/slow")));
    start(verifier, mismatch());
    device_.advanceBy(4);
    EXPECT_THAT(answers_, IsEmpty());
    device_.advanceBy(2);
    EXPECT_EQ(answers_, (std::vector<Answer>{{ZRMJwsVerifyResultVerified, std::nullopt},
                                             {ZRMJwsVerifyResultMismatch, std::nullopt}}));
}

TEST_F(ZRMJwsVerifierTest, DroppedMeanwhileItStillAnswers) {
    {
        ZRMJwsVerifier dropped(device_.platform(), configuration_);
        start(dropped, goodSignature());
        start(dropped, mismatch());
    }
    device_.runUntilIdle();
    EXPECT_EQ(answers_, (std::vector<Answer>{{ZRMJwsVerifyResultVerified, std::nullopt},
                                             {ZRMJwsVerifyResultMismatch, std::nullopt}}));
}

}  // namespace
