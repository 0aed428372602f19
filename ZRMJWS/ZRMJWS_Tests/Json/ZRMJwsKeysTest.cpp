#include <gtest/gtest.h>

#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsKeys.h"

namespace {

TEST(ZRMJwsKeys, AreTheNamesThatTravel) {
    EXPECT_STREQ(kZRMJwsPayloadKey, "payload");
    EXPECT_STREQ(kZRMJwsSignaturesKey, "signatures");
    EXPECT_STREQ(kZRMJwsSignatureKey, "signature");
    EXPECT_STREQ(kZRMJwsProtectedKey, "protected");
    EXPECT_STREQ(kZRMJwsHeaderKey, "header");
    EXPECT_STREQ(kZRMJwsX5CKey, "x5c");
    EXPECT_STREQ(kZRMJwsX5UKey, "x5u");
    EXPECT_STREQ(kZRMJwsAlgKey, "alg");
    EXPECT_STREQ(kZRMJwsKeyId, "kid");
}

TEST(ZRMJwsKeys, NameTheAlgorithmsAndTheErrorDomain) {
    EXPECT_STREQ(kZRMJwsAlgorithmRS256Key, "RS256");
    EXPECT_STREQ(kZRMJwsAlgorithmHS256Key, "HS256");
    EXPECT_STREQ(kZRMJwsErrorDomain, "ZRMJWSErrorDomain");
}

}  // namespace
