#include <gtest/gtest.h>

#include "ZRMPlatform/Linux/ZRMLinuxIpAddress.h"
#include "ZRMPlatform/Linux/ZRMLinuxResolveOverrides.h"

TEST(ZRMLinuxResolveOverrides, TakesNamePortAndAnAddressOfEitherFamily) {
    EXPECT_EQ(zrm_parseResolveOverride("Risk.Example.TEST:8443:127.0.0.1"),
              (ZRMLinuxResolveOverride{"risk.example.test", "8443", "127.0.0.1", "8443"}));
    EXPECT_EQ(zrm_parseResolveOverride("host:1:::1"),
              (ZRMLinuxResolveOverride{"host", "1", "::1", "1"}));
    EXPECT_EQ(zrm_parseResolveOverride("host:65535:[2001:db8::1]"),
              (ZRMLinuxResolveOverride{"host", "65535", "2001:db8::1", "65535"}));
}

TEST(ZRMLinuxResolveOverrides, TakesAnotherPortBehindAnIpv4OrABracketedAddress) {
    EXPECT_EQ(zrm_parseResolveOverride("host:8443:127.0.0.1:43217"),
              (ZRMLinuxResolveOverride{"host", "8443", "127.0.0.1", "43217"}));
    EXPECT_EQ(zrm_parseResolveOverride("host:8443:[::1]:43217"),
              (ZRMLinuxResolveOverride{"host", "8443", "::1", "43217"}));
    EXPECT_EQ(zrm_parseResolveOverride("host:8443:::1:2"),
              (ZRMLinuxResolveOverride{"host", "8443", "::1:2", "8443"}));
}

TEST(ZRMLinuxResolveOverrides, RefusesWhatIsNoOverride) {
    for (const char* text :
         {"", "host", "host:1", "host:1:", ":1:127.0.0.1", "host::127.0.0.1",
          "host:65536:127.0.0.1", "host:123456:127.0.0.1", "host:1x:127.0.0.1", "host:1:name",
          "host:1:127.0.0.256", "host:1:[::1", "host:1:127.0.0.1:", "host:1:127.0.0.1:x",
          "host:1:127.0.0.1:65536", "host:1:[::1]:", "host:1:127.0.0.1:1:2"}) {
        EXPECT_EQ(zrm_parseResolveOverride(text), std::nullopt) << text;
    }
}

TEST(ZRMLinuxResolveOverrides, NamesOnTheConsoleWhatItLeavesOut) {
    testing::internal::CaptureStderr();
    const auto parsed = zrm_parseResolveOverrides({"a:1:127.0.0.1", "broken", "b:2:::1"});
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Not a HOST:PORT:ADDRESS[:PORT] override: broken\n");
    ASSERT_EQ(parsed.size(), 2U);
    EXPECT_EQ(parsed[1].host, "b");
}

TEST(ZRMLinuxIpAddress, KnowsTheUnspecifiedAddresses) {
    EXPECT_TRUE(ZRMLinuxIpAddress::fromText("0.0.0.0")->isUnspecified());
    EXPECT_TRUE(ZRMLinuxIpAddress::fromText("::")->isUnspecified());
    EXPECT_FALSE(ZRMLinuxIpAddress::fromText("0.0.0.1")->isUnspecified());
    EXPECT_FALSE(ZRMLinuxIpAddress::fromText("::1")->isUnspecified());
    EXPECT_EQ(ZRMLinuxIpAddress::fromText(std::string("127.0.0.1\0x", 11)), std::nullopt);
}
