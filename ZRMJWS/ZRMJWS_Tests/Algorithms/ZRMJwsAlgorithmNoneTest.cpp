#include <gtest/gtest.h>

#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsAlgorithmFactory.h"
#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsAlgorithmNone.h"

namespace {

TEST(ZRMJwsAlgorithmNone, IsMadeByTheFactoryAndHasACapitalizedName) {
    const auto algorithm = ZRMJwsAlgorithmFactory::algorithmNone();
    ASSERT_TRUE(algorithm);
    EXPECT_EQ(algorithm->name(), "None");
    EXPECT_NE(algorithm, ZRMJwsAlgorithmFactory::algorithmNone());
}

TEST(ZRMJwsAlgorithmNone, SignsNothingAndHasNoHeaders) {
    const ZRMJwsAlgorithmNone algorithm;
    EXPECT_EQ(algorithm.signData(zrm_dataFromText("data")), std::nullopt);
    EXPECT_EQ(algorithm.protectedHeaders(), std::nullopt);
    EXPECT_EQ(algorithm.unprotectedHeaders(), std::nullopt);
}

TEST(ZRMJwsAlgorithmNone, VerifiesAnything) {
    const ZRMJwsAlgorithmNone algorithm;
    EXPECT_TRUE(algorithm.verifyData({}, {}));
    EXPECT_TRUE(algorithm.verifyData(zrm_dataFromText("data"), zrm_dataFromText("gibberish")));
}

}  // namespace
