#include <gtest/gtest.h>

#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsAlgorithmFactory.h"
#include "ZRMJWS/ZRMJWS_Lib/Algorithms/ZRMJwsAlgorithmHS256.h"

namespace {

TEST(ZRMJwsAlgorithmHS256, IsNeverMadeByTheFactory) {
    EXPECT_EQ(ZRMJwsAlgorithmFactory::algorithmHS256({1, 2, 3}, "key-1"), nullptr);
}

TEST(ZRMJwsAlgorithmHS256, KeepsItsKeyAndNamesIt) {
    const ZRMJwsAlgorithmHS256 algorithm({1, 2, 3}, "key-1");
    EXPECT_EQ(algorithm.key(), (ZRMData{1, 2, 3}));
    EXPECT_EQ(algorithm.keyId(), "key-1");
    EXPECT_EQ(algorithm.name(), "HS256");
    EXPECT_EQ(algorithm.protectedHeaders(), (ZRMDictionary{{"alg", "HS256"}}));
    EXPECT_EQ(algorithm.unprotectedHeaders(), (ZRMDictionary{{"kid", "key-1"}}));
}

TEST(ZRMJwsAlgorithmHS256, SignsNothingAndVerifiesNothing) {
    const ZRMJwsAlgorithmHS256 algorithm(zrm_dataFromText("key"), "");
    const auto data = zrm_dataFromText("data");
    EXPECT_EQ(algorithm.signData(data), std::nullopt);
    EXPECT_FALSE(algorithm.verifyData({}, {}));
    // What HMAC-SHA-256 of "data" under "key" really is.
    const ZRMData mac{0x50, 0x31, 0xfe, 0x3d, 0x98, 0x9c, 0x6d, 0x15, 0x37, 0xa0, 0x13,
                      0xfa, 0x6e, 0x73, 0x9d, 0xa2, 0x34, 0x63, 0xfd, 0xae, 0xc3, 0xb7,
                      0x01, 0x37, 0xd8, 0x28, 0xe3, 0x6a, 0xce, 0x22, 0x1b, 0xd0};
    EXPECT_FALSE(algorithm.verifyData(data, mac));
}

}  // namespace
