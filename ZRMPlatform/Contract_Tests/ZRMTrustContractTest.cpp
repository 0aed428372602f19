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

TEST_P(ZRMTrustContract, ALeafThatIsNotOneCertificateAloneIsInvalid) {
    const auto der = pki_.root().der();
    auto longer = der;
    longer.push_back(0);
    const ZRMData shorter(der.begin(), der.end() - 1);
    std::vector<std::string> expected;
    for (const auto& leaf : {longer, shorter, ZRMData(), ZRMData(50, 0x30)}) {
        platform()->trust->evaluate({{leaf, der}, {der}}, noteResult());
        expected.emplace_back("0 without key");
    }
    EXPECT_TRUE(waitForNotes(expected.size()));
    EXPECT_EQ(notes(), expected);
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
