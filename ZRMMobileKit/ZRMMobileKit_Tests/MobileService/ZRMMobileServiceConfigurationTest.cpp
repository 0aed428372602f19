#include <gtest/gtest.h>

#include "ZRMMobileKit/ZRMLoginResult.h"
#include "ZRMMobileKit/ZRMMobileKitInfo.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/MobileService/ZRMMobileServiceConfiguration+ZRMMobileKit.h"
#include "ZRMMobileKit/ZRMMobileServiceConfiguration.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"

TEST(ZRMMobileServiceConfiguration, BeginsWithoutUrlAndWithErrorsOnly) {
    const auto configuration = ZRMMobileServiceConfiguration::configuration();
    EXPECT_EQ(configuration.statisticsUrl(), std::nullopt);
    EXPECT_EQ(configuration.logLevel(), 1u);
    const ZRMMobileServiceConfiguration constructed;
    EXPECT_EQ(constructed.statisticsUrl(), std::nullopt);
    EXPECT_EQ(constructed.logLevel(), 1u);
}

TEST(ZRMMobileServiceConfiguration, CopiesTheUrlItIsGiven) {
    std::string url = "https://a.example.com/stat";
    ZRMMobileServiceConfiguration configuration;
    configuration.setStatisticsUrl(url);
    url = "changed";
    auto copy = configuration;
    configuration.setStatisticsUrl(std::nullopt);
    EXPECT_EQ(copy.statisticsUrl(), "https://a.example.com/stat");
    EXPECT_EQ(configuration.statisticsUrl(), std::nullopt);
    copy.setLogLevel(0);
    EXPECT_EQ(copy.logLevel(), 0u);
    const auto moved = std::move(copy);
    EXPECT_EQ(moved.statisticsUrl(), "https://a.example.com/stat");
}

TEST(ZRMMobileServiceConfiguration, PublicLogLevelsMapToTheInternalOnes) {
    EXPECT_EQ(internalLogLevelFrom(0), kZRMLogLevelVerbose);
    EXPECT_EQ(internalLogLevelFrom(1), kZRMLogLevelError);
    EXPECT_EQ(internalLogLevelFrom(2), kZRMLogLevelError);
    EXPECT_EQ(internalLogLevelFrom(~std::uint64_t{0}), kZRMLogLevelError);
}

TEST(ZRMMobileKitInfo, NamesProductVersionAndDomain) {
    EXPECT_STREQ(kZRMMobileKitProductName, "ZRMMobileKit");
    EXPECT_STREQ(kZRMMobileKitVersion, "3.28.0.12");
    EXPECT_STREQ(kZRMMobileKitErrorDomain, "com.velorin.zrm.mobilekit");
}

TEST(ZRMLoginResult, EveryValueHasItsText) {
    const std::vector<std::string> texts = {
        "SUCCESS",           "INCORRECT_LOGIN", "INCORRECT_PASSWORD", "DROP_CONNECTION",
        "CLOSE_APPLICATION", "AUTH_TIMEOUT",    "UNKNOWN_ERROR"};
    for (std::size_t value = 0; value < texts.size(); ++value) {
        EXPECT_EQ(zrm_stringFromLoginResult(static_cast<ZRMLoginResult>(value)), texts[value]);
    }
}

TEST(ZRMLoginResult, ValueOutsideTheEnumerationIsAnAssertion) {
    for (const int value : {7, 100, -1}) {
        try {
            static_cast<void>(zrm_stringFromLoginResult(static_cast<ZRMLoginResult>(value)));
            ADD_FAILURE() << value;
        } catch (const ZRMAssertionFailure& failure) {
            EXPECT_STREQ(failure.what(), "Unsupported login result");
        }
    }
}
