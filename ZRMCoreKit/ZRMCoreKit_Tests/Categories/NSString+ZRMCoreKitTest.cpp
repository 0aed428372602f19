#include <map>

#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

// Counts up through all bytes, so that every value comes equally often.
class CountingRandom final : public ZRMRandom {
  public:
    void fill(std::span<std::uint8_t> bytes) override {
        for (auto& byte : bytes) {
            byte = next_++;
        }
    }

  private:
    std::uint8_t next_ = 0;
};

}  // namespace

TEST(ZRMString, NamesTheDirectoriesOfTheApplication) {
    ZRMSimulatedDevice device;
    const auto& directories = *device.platform()->directories;
    EXPECT_EQ(zrm_documentDirectory(directories), directories.documents());
    EXPECT_EQ(zrm_applicationSupportDirectory(directories), directories.applicationSupport());
}

TEST(ZRMString, TheCurrentApplicationsDirectoryIsNamedAfterItsIdentifier) {
    ZRMSimulatedDevice device;
    const auto& directories = *device.platform()->directories;
    device.mainBundle().setIdentifier("com.example.bank");
    EXPECT_EQ(zrm_currentApplicationSupportDirectory(directories, device.mainBundle()),
              directories.applicationSupport() + "/com.example.bank");
    device.mainBundle().setIdentifier(std::nullopt);
    EXPECT_EQ(zrm_currentApplicationSupportDirectory(directories, device.mainBundle()),
              std::nullopt);
    device.mainBundle().setIdentifier("");
    EXPECT_EQ(zrm_currentApplicationSupportDirectory(directories, device.mainBundle()),
              std::nullopt);
}

TEST(ZRMString, Base64UrlGetsAsManyPadsAsItsLengthModulo4) {
    EXPECT_EQ(zrm_base64FromBase64UrlString(""), "");
    EXPECT_EQ(zrm_base64FromBase64UrlString("YWJj"), "YWJj");
    EXPECT_EQ(zrm_base64FromBase64UrlString("YWJjZ"), "YWJjZ=");
    EXPECT_EQ(zrm_base64FromBase64UrlString("YQ"), "YQ==");
    EXPECT_EQ(zrm_base64FromBase64UrlString("YWI"), "YWI===");
}

TEST(ZRMString, Base64AndBase64UrlDifferInTwoLettersAndPadding) {
    EXPECT_EQ(zrm_base64FromBase64UrlString("-_-_"), "+/+/");
    EXPECT_EQ(zrm_base64UrlFromBase64String("+/+/"), "-_-_");
    EXPECT_EQ(zrm_base64UrlFromBase64String("YQ=="), "YQ");
    EXPECT_EQ(zrm_base64UrlFromBase64String("=Y=Q=="), "YQ");
    EXPECT_EQ(zrm_base64UrlFromBase64String(""), "");
}

TEST(ZRMString, LogLevelsHaveNames) {
    EXPECT_EQ(zrm_stringForLogLevel(0), "VER");
    EXPECT_EQ(zrm_stringForLogLevel(1), "ERR");
    EXPECT_EQ(zrm_stringForLogLevel(5), "N/A");
    EXPECT_EQ(zrm_stringForLogLevel(-1), "N/A");
}

TEST(ZRMString, RandomStringsHaveTheirLength) {
    CountingRandom random;
    for (const std::size_t length : {0U, 1U, 62U, 63U, 64U, 65U, 1000U}) {
        EXPECT_EQ(zrm_randomStringWithLength(random, length).size(), length);
    }
}

TEST(ZRMString, RandomStringsUseEveryLetterAndDigitEquallyOften) {
    CountingRandom random;
    const auto text = zrm_randomStringWithLength(random, std::size_t{62} * 4 * 10);
    std::map<char, int> counts;
    for (const auto character : text) {
        ++counts[character];
    }
    EXPECT_EQ(counts.size(), 62U);
    for (const auto& [character, count] : counts) {
        EXPECT_EQ(count, 40) << character;
        EXPECT_TRUE(std::isalnum(static_cast<unsigned char>(character)) != 0) << character;
    }
}
