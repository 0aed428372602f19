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

std::string systemLocale(const ZRMTestDirectory& etc) {
    // The environment is the process's, not the system's.
    const auto environment =
        std::make_shared<ZRMStubEnvironment>(std::map<std::string, std::string>{{"LANG", "it_IT"}});
    return ZRMLinuxLocaleSource(environment, etc.path()).systemLocaleIdentifier();
}

std::vector<std::string> languages(std::map<std::string, std::string> variables) {
    const auto environment = std::make_shared<ZRMStubEnvironment>(std::move(variables));
    return ZRMLinuxLocaleSource(environment).preferredLanguages();
}

using Tags = std::vector<std::string>;

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
    for (const char* name : {"C", "POSIX", "C.UTF-8", ".UTF-8", "de AT", "d\xE4_AT", "../de"}) {
        EXPECT_EQ(locale({{"LANG", name}}), "en_US_POSIX") << name;
    }
    EXPECT_EQ(locale({}), "en_US_POSIX");
}

TEST(ZRMLinuxLocaleSource, TheSystemsLocaleIsThatOfItsFiles) {
    const ZRMTestDirectory etc;
    EXPECT_EQ(systemLocale(etc), "en_US_POSIX");
    etc.writeFile("default/locale", "# set by the installer\nLANG=\"fr_FR.UTF-8\"\n");
    EXPECT_EQ(systemLocale(etc), "fr_FR");
    etc.writeFile("locale.conf", "LC_TIME=sv_SE.UTF-8\nLANG=de_AT.UTF-8\n");
    EXPECT_EQ(systemLocale(etc), "de_AT");
    etc.writeFile("locale.conf", "LANG=\n");
    EXPECT_EQ(systemLocale(etc), "fr_FR");
    for (const char* const neutral : {"LANG=C.UTF-8\n", "LANG=d\xE4_AT\n", "LANG='de AT'\n"}) {
        etc.writeFile("locale.conf", neutral);
        EXPECT_EQ(systemLocale(etc), "en_US_POSIX") << neutral;
    }
    etc.writeFile("locale.conf", "LANG=" + std::string(100'000, 'x'));
    EXPECT_EQ(systemLocale(etc), "fr_FR");
}

TEST(ZRMLinuxLocaleSource, LanguagesAreThoseOfTheListThenThatOfTheLocale) {
    EXPECT_EQ(languages({{"LANGUAGE", "de_AT:de:en_GB"}, {"LANG", "fr_FR.UTF-8"}}),
              (Tags{"de-AT", "de", "en-GB", "fr-FR"}));
    EXPECT_EQ(languages({{"LANGUAGE", "de:C::en:de:"}, {"LANG", "de.UTF-8"}}), (Tags{"de", "en"}));
    EXPECT_EQ(languages({{"LANG", "de_AT.UTF-8"}}), Tags{"de-AT"});
    EXPECT_EQ(languages({{"LANGUAGE", "\xFF\xFE:../x:sv"}}), Tags{"sv"});
}

TEST(ZRMLinuxLocaleSource, TheLanguageOfTheLocaleIsThatOfMessages) {
    EXPECT_EQ(languages({{"LC_TIME", "fr_FR"}, {"LC_MESSAGES", "de_AT"}, {"LANG", "it_IT"}}),
              Tags{"de-AT"});
    EXPECT_EQ(languages({{"LC_ALL", "sv_SE"}, {"LC_MESSAGES", "de_AT"}}), Tags{"sv-SE"});
}

TEST(ZRMLinuxLocaleSource, WhereNobodyChoseALanguageThereIsNone) {
    EXPECT_EQ(languages({}), Tags{});
    EXPECT_EQ(languages({{"LANGUAGE", ""}, {"LANG", "C.UTF-8"}}), Tags{});
}
