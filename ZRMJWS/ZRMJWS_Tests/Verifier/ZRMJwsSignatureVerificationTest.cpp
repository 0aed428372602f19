#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsErrorFactory.h"
#include "ZRMJWS/ZRMJWS_Lib/Verifier/ZRMJwsSignatureVerification.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ZRMJwsSignatureVerificationTest : public testing::Test {
  protected:
    // The handler's calls, now and later.
    std::shared_ptr<std::vector<std::optional<ZRMError>>> verify(
        const ZRMJwsSignatureVerification& verification, const ZRMJwsObject& object,
        bool checkCert) {
        auto calls = std::make_shared<std::vector<std::optional<ZRMError>>>();
        verification(object, checkCert,
                     [calls](std::optional<ZRMError> error) { calls->push_back(error); });
        return calls;
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    ZRMRecordedLog log_;
    const ZRMJwsSignatureVerification usual_ = zrm_jwsSignatureVerification(device_.platform(), {});
    const ZRMJwsSignatureVerification stored_ =
        zrm_jwsStoredSignatureVerification(device_.platform(), {});
    const ZRMJwsObject unsigned_{"e30", {}};
    // Names its chain, which nobody delivers.
    const ZRMJwsObject named_{
        "e30",
        {ZRMJwsSignature("c2ln", "eyJhbGciOiJSUzI1NiJ9",
                         ZRMDictionary{{"x5u", "https://risk.example.com/chain.crt"}})}};
};

}  // namespace

TEST_F(ZRMJwsSignatureVerificationTest, IsThatOfAVerifierOfItsOwn) {
    device_.network().script("/chain.crt", ZRMSimulatedAnswer::withBody("none"), 2);
    const auto checked = verify(usual_, named_, true);
    const auto unchecked = verify(usual_, named_, false);
    EXPECT_THAT(*checked, IsEmpty());
    EXPECT_THAT(*unchecked, IsEmpty());
    device_.runUntilIdle();
    EXPECT_THAT(*checked, ElementsAre(ZRMJwsErrorFactory::errorForCode(ZRMJwsErrorUnknown)));
    EXPECT_THAT(*unchecked, ElementsAre(std::nullopt));
}

TEST_F(ZRMJwsSignatureVerificationTest, OfAStoredDocumentDoesNotWaitForTheNetwork) {
    device_.setConnected(false);
    const auto calls = verify(stored_, named_, false);
    EXPECT_THAT(*calls, ElementsAre(std::nullopt));
    device_.advanceBy(3600);
    EXPECT_EQ(calls->size(), 1U);
    EXPECT_THAT(log_.errors(),
                ElementsAre(testing::StartsWith("Download x509 certificate chain error: ")));
}

TEST_F(ZRMJwsSignatureVerificationTest, OfAStoredDocumentStillWantsASignature) {
    const auto calls = verify(stored_, unsigned_, false);
    EXPECT_THAT(*calls,
                ElementsAre(ZRMJwsErrorFactory::errorForCode(ZRMJwsErrorSignatureNotFound)));
}

TEST_F(ZRMJwsSignatureVerificationTest, OfAStoredDocumentWaitsWhenCertificatesAreChecked) {
    device_.network().script("/chain.crt", ZRMSimulatedAnswer::withBody("none"));
    const auto calls = verify(stored_, named_, true);
    EXPECT_THAT(*calls, IsEmpty());
    device_.runUntilIdle();
    EXPECT_THAT(*calls, ElementsAre(ZRMJwsErrorFactory::errorForCode(ZRMJwsErrorUnknown)));
}
