// What tests can set on the trust decisions of the simulated device.
#include <gtest/gtest.h>

#include "ZRMPlatform/Linux_Tests/ZRMTestPki.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

// What the device's trust port decides about a chain of one certificate.
ZRMTrustEvaluation trustIn(ZRMSimulatedDevice& device, const ZRMTestCertificate& leaf) {
    std::vector<ZRMTrustEvaluation> answers;
    device.platform()->trust->evaluate({{leaf.der()}, {}}, [&](ZRMTrustEvaluation evaluation) {
        answers.push_back(std::move(evaluation));
    });
    EXPECT_TRUE(answers.empty());
    device.runUntilIdle();
    EXPECT_EQ(answers.size(), 1u);
    return answers.empty() ? ZRMTrustEvaluation() : answers.front();
}

// Trusts nothing and completes at once.
class DenyingTrust final : public ZRMTrust {
  public:
    void evaluate(ZRMTrustRequest, Completion completion) override {
        completion({ZRMTrustResultDeny, nullptr, "denied"});
    }
};

}  // namespace

TEST(ZRMSimulatedTrust, NothingIsTrustedUnlessToldSo) {
    ZRMSimulatedDevice device;
    const auto leaf = ZRMTestPki(device.now()).root();
    EXPECT_EQ(trustIn(device, leaf).result, ZRMTrustResultRecoverableTrustFailure);
    device.trust().setResult(ZRMTrustResultProceed);
    const auto trusted = trustIn(device, leaf);
    EXPECT_EQ(trusted.result, ZRMTrustResultProceed);
    ASSERT_NE(trusted.publicKey, nullptr);
    const ZRMData digest(32, 7);
    EXPECT_NE(trusted.publicKey->verifyDigest(digest, leaf.sign(digest)), 0) << "of another digest";
    EXPECT_EQ(trusted.publicKey->blockSize(), 256u);
    device.trust().setResult(ZRMTrustResultDeny);
    EXPECT_EQ(trustIn(device, leaf).publicKey, nullptr);
    EXPECT_EQ(device.trust().requests().size(), 3u);
}

TEST(ZRMSimulatedTrust, AHandlerDecidesInPlaceOfTheResult) {
    ZRMSimulatedDevice device;
    const auto leaf = ZRMTestPki(device.now()).root();
    device.trust().handle([&](const ZRMTrustRequest& request) {
        EXPECT_EQ(request.certificates, std::vector<ZRMData>{leaf.der()});
        return ZRMTrustEvaluation{ZRMTrustResultFatalTrustFailure, nullptr, "revoked"};
    });
    EXPECT_EQ(trustIn(device, leaf).reason, "revoked");
    device.trust().handle({});
    EXPECT_EQ(trustIn(device, leaf).result, ZRMTrustResultRecoverableTrustFailure);
}

TEST(ZRMSimulatedTrust, APluggedBodyIsMadeAnewForEachProcess) {
    ZRMSimulatedDevice device;
    std::vector<const ZRMExecutor*> madeFor;
    device.trust().plug([&](const ZRMPlatform& platform) {
        madeFor.push_back(platform.executor.get());
        return std::make_shared<DenyingTrust>();
    });
    device.restartProcess();
    ASSERT_EQ(madeFor.size(), 2u);
    EXPECT_NE(madeFor[0], madeFor[1]);
    EXPECT_EQ(madeFor[1], device.platform()->executor.get());
    std::string reason;
    device.platform()->trust->evaluate(
        {}, [&](const ZRMTrustEvaluation& evaluation) { reason = evaluation.reason; });
    EXPECT_EQ(reason, "denied");
    device.trust().plug({});
    EXPECT_EQ(trustIn(device, ZRMTestPki(device.now()).root()).result,
              ZRMTrustResultRecoverableTrustFailure);
}
