// What ZRMLocalAuthentication.h promises.
#include <gtest/gtest.h>

#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"

namespace {

class ZRMLocalAuthenticationContract : public ZRMContract {
  protected:
    [[nodiscard]] ZRMBiometricEvaluation evaluate() {
        return platform()->localAuthentication->evaluateBiometrics();
    }
};

}  // namespace

TEST_P(ZRMLocalAuthenticationContract, ThereIsNoSensorAtFirst) {
    const auto evaluation = evaluate();
    EXPECT_FALSE(evaluation.canEvaluate);
    EXPECT_FALSE(evaluation.domainState);
    EXPECT_EQ(evaluation.error, ZRMError(kZRMLocalAuthenticationErrorDomain,
                                         ZRMLocalAuthenticationErrorBiometryNotAvailable));
}

TEST_P(ZRMLocalAuthenticationContract, TellsTheStateOfTheEnrolment) {
    body_->setBiometrics({true, ZRMData{1, 0, 255}, std::nullopt});
    EXPECT_TRUE(evaluate().canEvaluate);
    EXPECT_EQ(evaluate().domainState, (ZRMData{1, 0, 255}));
    EXPECT_FALSE(evaluate().error);
    body_->setBiometrics({true, ZRMData{2}, std::nullopt});
    EXPECT_EQ(evaluate().domainState, ZRMData{2});
}

TEST_P(ZRMLocalAuthenticationContract, TellsWhyItCannotBeEvaluated) {
    for (const auto code : {ZRMLocalAuthenticationErrorBiometryNotEnrolled,
                            ZRMLocalAuthenticationErrorBiometryLockout}) {
        const ZRMError error(kZRMLocalAuthenticationErrorDomain, code);
        body_->setBiometrics({false, std::nullopt, error});
        EXPECT_FALSE(evaluate().canEvaluate);
        EXPECT_EQ(evaluate().error, error);
    }
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMLocalAuthenticationContract, zrm_contractBodies(),
                         zrm_contractBodyName);
