#include <cstdlib>

#include <gtest/gtest.h>
#include <openssl/crypto.h>

#include "ZRMPlatform/Linux/ZRMLinuxOpenSSL.h"

namespace {

constexpr int kTornDown = 7;

// Ends the process with kTornDown where OpenSSL tears itself down at the end.
[[noreturn]] void endAfter(void (*firstUse)()) {
    firstUse();
    OPENSSL_atexit([] { std::_Exit(kTornDown); });
    std::exit(EXIT_SUCCESS);
}

// Each in a process of its own, because the first use decides.
class ZRMLinuxOpenSSLDeathTest : public testing::Test {
  protected:
    ZRMLinuxOpenSSLDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(ZRMLinuxOpenSSLDeathTest, IsNotTornDownAtTheEndOfTheProcess) {
    EXPECT_EXIT(endAfter(&zrm_prepareOpenSSL), testing::ExitedWithCode(EXIT_SUCCESS), "");
}

TEST_F(ZRMLinuxOpenSSLDeathTest, IsNotTornDownWhereItsFirstUseIsAMark) {
    EXPECT_EXIT(endAfter([] { const ZRMLinuxOpenSSLErrors errors; }),
                testing::ExitedWithCode(EXIT_SUCCESS), "");
}

}  // namespace
