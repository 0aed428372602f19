#include <filesystem>

#include <gtest/gtest.h>

#include "ZRMPlatform/Linux/ZRMLinuxLocaleSource.h"
#include "ZRMPlatform/Linux_Tests/ZRMStubs.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

namespace {

std::string zone(const ZRMTestDirectory& etc, std::map<std::string, std::string> variables = {}) {
    const auto environment = std::make_shared<ZRMStubEnvironment>(std::move(variables));
    return ZRMLinuxLocaleSource(environment, etc.path()).timeZoneIdentifier();
}

std::string locale(std::map<std::string, std::string> variables) {
    const auto environment = std::make_shared<ZRMStubEnvironment>(std::move(variables));
    return ZRMLinuxLocaleSource(environment).localeIdentifier();
}

}  // namespace

TEST(ZRMLinuxLocaleSource, TheZoneOfTheEnvironmentComesFirst) {
    const ZRMTestDirectory etc;
    etc.writeFile("timezone", "Europe/Vienna\n");
    EXPECT_EQ(zone(etc, {{"TZ", "Asia/Tokyo"}}), "Asia/Tokyo");
    EXPECT_EQ(zone(etc, {{"TZ", ":America/New_York"}}), "America/New_York");
    EXPECT_EQ(zone(etc, {{"TZ", ":/usr/share/zoneinfo/Etc/GMT+5"}}), "Etc/GMT+5");
    EXPECT_EQ(zone(etc, {{"TZ", "UTC"}}), "UTC");
}

TEST(ZRMLinuxLocaleSource, ARuleInTheEnvironmentIsNoZoneName) {
    const ZRMTestDirectory etc;
    etc.writeFile("timezone", "Europe/Vienna\n");
    for (const char* rule :
         {"", "CET-1CEST,M3.5.0,M10.5.0/3", "CET-1", "/no/database", "<+03>-3"}) {
        EXPECT_EQ(zone(etc, {{"TZ", rule}}), "Europe/Vienna") << rule;
    }
}

TEST(ZRMLinuxLocaleSource, WithoutTheFileTheLinkTellsAndThenItIsUtc) {
    const ZRMTestDirectory etc;
    EXPECT_EQ(zone(etc), "UTC");
    std::filesystem::create_symlink("/usr/share/zoneinfo/America/Argentina/Ushuaia",
                                    etc.below("localtime"));
    EXPECT_EQ(zone(etc), "America/Argentina/Ushuaia");
    etc.writeFile("timezone", "not a zone!\n");
    EXPECT_EQ(zone(etc), "America/Argentina/Ushuaia");
}

TEST(ZRMLinuxLocaleSource, TheFirstVariableThatIsSetNamesTheLocale) {
    EXPECT_EQ(locale({{"LC_ALL", "de_AT.UTF-8"}, {"LC_TIME", "fr_FR"}, {"LANG", "it_IT"}}),
              "de_AT");
    EXPECT_EQ(locale({{"LC_ALL", ""}, {"LC_TIME", "fr_FR.UTF-8@euro"}, {"LANG", "it_IT"}}),
              "fr_FR");
    EXPECT_EQ(locale({{"LANG", "sr_RS@latin"}}), "sr_RS");
}

TEST(ZRMLinuxLocaleSource, TheNeutralLocaleIsEnUsPosix) {
    for (const char* name : {"C", "POSIX", "C.UTF-8", ".UTF-8"}) {
        EXPECT_EQ(locale({{"LANG", name}}), "en_US_POSIX") << name;
    }
    EXPECT_EQ(locale({}), "en_US_POSIX");
}
