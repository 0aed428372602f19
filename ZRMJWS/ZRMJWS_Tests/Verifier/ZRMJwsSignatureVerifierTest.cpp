#include <gmock/gmock.h>

#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsErrorFactory.h"
#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMJwsSignatureVerifier.h"
#include "ZRMJWS/ZRMJWS_Tests/Support/ZRMJwsVerifierFixture.h"

namespace {

using testing::IsEmpty;

class ZRMJwsSignatureVerifierTest : public ZRMJwsVerifierFixture {
  protected:
    using Answer = std::optional<ZRMError>;

    void start(ZRMJwsSignatureVerifier& verifier, const std::vector<ZRMJwsSignature>& signatures,
               bool checkCert = true) {
        verifier.verifySignaturesForJwsObject(
            {payload_, signatures}, checkCert,
            [this](std::optional<ZRMError> error) { answers_.push_back(std::move(error)); });
    }
    // What the object with those signatures comes to.
    Answer verify(const std::vector<ZRMJwsSignature>& signatures, bool checkCert = true) {
        answers_.clear();
        start(verifier_, signatures, checkCert);
        device_.advanceBy(3600);
        EXPECT_EQ(answers_.size(), 1u);
        return answers_.empty() ? Answer() : answers_.front();
    }
    ZRMJwsSignature unreachable() const {
        return signatureBy(leaf_, x5u("https://pki.example/unreachable"));
    }
    static ZRMJwsSignature corrupt() { return {"c2ln", "corrupt", ZRMDictionary()}; }
    static Answer unknownError() { return ZRMJwsErrorFactory::errorForCode(ZRMJwsErrorUnknown); }

    ZRMJwsSignatureVerifier verifier_{device_.platform(), root_.pem()};
    std::vector<Answer> answers_;
};

TEST_F(ZRMJwsSignatureVerifierTest, AnObjectWithoutSignaturesIsAnsweredAtOnce) {
    for (const bool checkCert : {true, false}) {
        answers_.clear();
        start(verifier_, {}, checkCert);
        ASSERT_EQ(answers_.size(), 1u);
        EXPECT_EQ(answers_[0], ZRMJwsErrorFactory::errorForCode(ZRMJwsErrorSignatureNotFound));
        EXPECT_EQ(answers_[0]->localizedDescription(), "Signature not found.");
        EXPECT_EQ(answers_[0]->domain(), "ZRMJWSErrorDomain");
        EXPECT_EQ(answers_[0]->code(), 1);
    }
}

TEST_F(ZRMJwsSignatureVerifierTest, AVerifiedSignatureHasNoError) {
    EXPECT_EQ(verify({goodSignature()}), std::nullopt);
}

TEST_F(ZRMJwsSignatureVerifierTest, TheAnswerNeverComesBeforeTheCallReturns) {
    start(verifier_, {corrupt()});
    EXPECT_THAT(answers_, IsEmpty());
    device_.runUntilIdle();
    EXPECT_EQ(answers_.size(), 1u);
}

TEST_F(ZRMJwsSignatureVerifierTest, EverySignatureHasToVerify) {
    EXPECT_EQ(verify({goodSignature(), goodSignature()}), std::nullopt);
    EXPECT_EQ(verify({goodSignature(), mismatch()}), unknownError());
    EXPECT_EQ(verify({mismatch(), goodSignature()}), unknownError());
}

TEST_F(ZRMJwsSignatureVerifierTest, AnotherResultThanVerifiedIsAnUnknownError) {
    const auto error = verify({mismatch()});
    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain(), "ZRMJWSErrorDomain");
    EXPECT_EQ(error->code(), 0);
    EXPECT_EQ(error->localizedDescription(), "Unknown error.");
    EXPECT_EQ(verify({signatureBy(leaf_, ZRMDictionary())}), unknownError());
    EXPECT_EQ(verify({signatureBy(leaf_, x5c({leaf_}))}), unknownError());
}

TEST_F(ZRMJwsSignatureVerifierTest, ASignatureWithoutAnOperationCountsAsAnsweredAndFails) {
    EXPECT_EQ(verify({corrupt()}), unknownError());
    EXPECT_EQ(verify({goodSignature(), corrupt()}), unknownError());
    EXPECT_EQ(verify({corrupt(), goodSignature()}), unknownError());
    for (const char* algorithm : {"HS256", "None"}) {
        const auto header = base64Of(R"({"alg":")" + std::string(algorithm) + R"("})");
        EXPECT_EQ(verify({{"c2ln", header, x5c({leaf_, intermediate_})}}), unknownError());
        EXPECT_EQ(log_.errors().back(), "Algorithm for JWS Signature not found");
    }
}

TEST_F(ZRMJwsSignatureVerifierTest, TellsTheResultOfEachSignatureInTheObjectsOrder) {
    std::vector<ZRMJwsVerifyResult> told;
    Answer error;
    verifier_.verifyEachSignatureForJwsObject(
        {payload_, {corrupt(), goodSignature(), mismatch(), signatureBy(leaf_, ZRMDictionary())}},
        true, [&](Answer first, std::vector<ZRMJwsVerifyResult> results) {
            error = std::move(first);
            told = std::move(results);
        });
    device_.runUntilIdle();
    EXPECT_EQ(error, unknownError());
    EXPECT_EQ(told, (std::vector<ZRMJwsVerifyResult>{
                        ZRMJwsVerifyResultNone, ZRMJwsVerifyResultVerified,
                        ZRMJwsVerifyResultMismatch, ZRMJwsVerifyResultNoChain}));
}

TEST_F(ZRMJwsSignatureVerifierTest, TheFirstErrorWins) {
    device_.network().handleEverything([](const ZRMUrlRequest&) {
        return ZRMSimulatedAnswer::withError(ZRMUrlErrorCannotFindHost);
    });
    const auto transport = verify({unreachable(), mismatch()});
    ASSERT_TRUE(transport);
    EXPECT_EQ(transport->domain(), kZRMUrlErrorDomain);
    EXPECT_EQ(transport->code(), ZRMUrlErrorCannotFindHost);
    EXPECT_EQ(verify({mismatch(), unreachable()}), unknownError());
}

TEST_F(ZRMJwsSignatureVerifierTest, WithoutTheCheckNothingIsAnError) {
    device_.network().handleEverything([](const ZRMUrlRequest&) {
        return ZRMSimulatedAnswer::withError(ZRMUrlErrorCannotFindHost);
    });
    EXPECT_EQ(verify({mismatch()}, false), std::nullopt);
    EXPECT_EQ(verify({corrupt(), mismatch(), unreachable(), goodSignature()}, false), std::nullopt);
}

TEST_F(ZRMJwsSignatureVerifierTest, TheRootIsTheWholePinnedChain) {
    // Without the intermediate among the delivered certificates nothing leads to the root.
    EXPECT_EQ(verify({signatureBy(leaf_, x5c({leaf_}))}), unknownError());
    ZRMJwsSignatureVerifier broken(device_.platform(), zrm_dataFromText("no certificate"));
    answers_.clear();
    start(broken, {goodSignature()});
    device_.runUntilIdle();
    EXPECT_EQ(answers_, std::vector<Answer>{unknownError()});
    EXPECT_THAT(log_.verboses(),
                testing::Contains("Invalid certificate in pem data of pinned chain."));
}

TEST_F(ZRMJwsSignatureVerifierTest, TheConfigurationMayAnchorAtThePinnedCertificatesAlone) {
    const auto foreign = pki_.root("foreign");
    const auto foreignLeaf = pki_.leaf(foreign);
    const auto signature = signatureBy(foreignLeaf, x5c({foreignLeaf, foreign}));
    EXPECT_EQ(verify({signature}), std::nullopt);
    ZRMJwsSignatureVerifier strict(device_.platform(),
                                   configuration_.withAnchorsAtPinnedCertificatesOnly(true));
    answers_.clear();
    start(strict, {signature});
    start(strict, {goodSignature()});
    device_.runUntilIdle();
    EXPECT_EQ(answers_, (std::vector<Answer>{unknownError(), std::nullopt}));
}

TEST_F(ZRMJwsSignatureVerifierTest, DroppedMeanwhileItStillAnswers) {
    {
        ZRMJwsSignatureVerifier dropped(device_.platform(), root_.pem());
        start(dropped, {goodSignature(), goodSignature()});
    }
    device_.runUntilIdle();
    EXPECT_EQ(answers_, std::vector<Answer>{std::nullopt});
}

TEST_F(ZRMJwsSignatureVerifierTest, AHundredSignaturesAreAnsweredOnce) {
    std::vector<ZRMJwsSignature> signatures(99, goodSignature());
    EXPECT_EQ(verify(signatures), std::nullopt);
    signatures.push_back(mismatch());
    EXPECT_EQ(verify(signatures), unknownError());
}

}  // namespace
