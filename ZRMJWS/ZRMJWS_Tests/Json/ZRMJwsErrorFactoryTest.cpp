#include <gtest/gtest.h>

#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsErrorFactory.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsKeys.h"

namespace {

TEST(ZRMJwsErrorFactory, DescribesEachCode) {
    const std::map<std::int64_t, std::string> messages{
        {ZRMJwsErrorUnknown, "Unknown error."},
        {ZRMJwsErrorSignatureNotFound, "Signature not found."},
        {ZRMJwsErrorSignatureInvalidFormat,
         "Signature has invalid format. Cannot verify JWS payload."},
    };
    for (const auto& [code, message] : messages) {
        const auto error = ZRMJwsErrorFactory::errorForCode(code);
        EXPECT_EQ(error.domain(), "ZRMJWSErrorDomain");
        EXPECT_EQ(error.code(), code);
        EXPECT_EQ(error.localizedDescription(), message);
        EXPECT_EQ(error.userInfo().size(), 1U);
    }
}

TEST(ZRMJwsErrorFactory, CodesHaveTheirNumbers) {
    EXPECT_EQ(ZRMJwsErrorUnknown, 0);
    EXPECT_EQ(ZRMJwsErrorSignatureNotFound, 1);
    EXPECT_EQ(ZRMJwsErrorSignatureInvalidFormat, 2);
}

TEST(ZRMJwsErrorFactory, CarriesGivenUserInfoAsItIs) {
    const auto error = ZRMJwsErrorFactory::errorForCode(ZRMJwsErrorSignatureNotFound, {{"k", "v"}});
    EXPECT_EQ(error, ZRMError(kZRMJwsErrorDomain, 1, {{"k", "v"}}));
}

TEST(ZRMJwsErrorFactory, AssertsThatTheCodeIsSupported) {
    for (const std::int64_t code : {-1, 3, 1000}) {
        try {
            ZRMJwsErrorFactory::errorForCode(code);
            ADD_FAILURE() << code << " was taken";
        } catch (const ZRMAssertionFailure& failure) {
            EXPECT_STREQ(failure.what(), "Unsupported error code");
        }
    }
}

}  // namespace
