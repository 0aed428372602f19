// What ZRMTrust.h promises of every body.
#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestPki.h"

namespace {

class ZRMTrustContract : public ZRMContract {
  protected:
    // Notes the result's number and whether there is a key.
    ZRMTrust::Completion noteResult() {
        return [notes = notes_](const ZRMTrustEvaluation& evaluation) {
            notes->add(std::to_string(evaluation.result) +
                       (evaluation.publicKey ? " with key" : " without key"));
        };
    }
    ZRMTestPki pki_{platform()->clock->now()};
};

}  // namespace

TEST_P(ZRMTrustContract, TellsCertificatesFromOtherBytes) {
    const auto der = pki_.root().der();
    EXPECT_TRUE(platform()->trust->isCertificate(der));
    auto longer = der;
    longer.push_back(0);
    EXPECT_FALSE(platform()->trust->isCertificate(longer));
    EXPECT_FALSE(platform()->trust->isCertificate(ZRMData(der.begin(), der.end() - 1)));
    EXPECT_FALSE(platform()->trust->isCertificate({}));
    EXPECT_FALSE(platform()->trust->isCertificate(ZRMData(50, 0x30)));
}

TEST_P(ZRMTrustContract, CompletesOnceAndNotBeforeTheCallReturns) {
    platform()->trust->evaluate({}, noteResult());
    platform()->trust->evaluate({{ZRMData{1, 2, 3}}, {}}, noteResult());
    EXPECT_TRUE(waitForNotes(2));
    EXPECT_EQ(notes(), (std::vector<std::string>{"0 without key", "0 without key"}));
}

TEST_P(ZRMTrustContract, WithoutAnAnchorNothingIsTrusted) {
    const auto root = pki_.root();
    platform()->trust->evaluate({{pki_.leaf(root).der(), root.der()}, {}}, noteResult());
    EXPECT_TRUE(waitForNotes(1));
    EXPECT_EQ(notes(), std::vector<std::string>{"5 without key"});
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMTrustContract, zrm_contractBodies(), zrm_contractBodyName);
