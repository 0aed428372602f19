#include <filesystem>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "ZRMPlatform/Linux/ZRMLinuxDirectories.h"
#include "ZRMPlatform/Linux_Tests/ZRMStubs.h"

TEST(ZRMLinuxDirectories, AHomeHoldsEverythingWhateverTheEnvironmentSays) {
    const ZRMStubEnvironment environment({{"HOME", "/other"}, {"XDG_DATA_HOME", "/elsewhere"}});
    const ZRMLinuxDirectories directories("/srv/app/", environment);
    EXPECT_EQ(directories.documents(), "/srv/app/Documents");
    EXPECT_EQ(directories.applicationSupport(), "/srv/app/Library/Application Support");
    EXPECT_EQ(directories.preferences(), "/srv/app/Library/Preferences");
    EXPECT_EQ(directories.keychains(), "/srv/app/Library/Keychains");
    EXPECT_EQ(directories.databaseFileLayer(), "");
}

TEST(ZRMLinuxDirectories, ARelativeHomeIsTakenFromTheWorkingDirectory) {
    const ZRMLinuxDirectories directories("some/./home", ZRMStubEnvironment({}));
    EXPECT_EQ(directories.documents(),
              std::filesystem::current_path().string() + "/some/home/Documents");
}

TEST(ZRMLinuxDirectories, WithoutAHomeTheXdgDirectoriesHold) {
    const ZRMLinuxDirectories directories("", ZRMStubEnvironment({{"HOME", "/home/me"},
                                                                  {"XDG_DOCUMENTS_DIR", "/docs/"},
                                                                  {"XDG_DATA_HOME", "/data"},
                                                                  {"XDG_CONFIG_HOME", "/config"}}));
    EXPECT_EQ(directories.documents(), "/docs");
    EXPECT_EQ(directories.applicationSupport(), "/data");
    EXPECT_EQ(directories.preferences(), "/config");
    EXPECT_EQ(directories.keychains(), "/data/keychains");
}

TEST(ZRMLinuxDirectories, WithoutXdgVariablesTheirDefaultsHold) {
    const ZRMLinuxDirectories directories(
        "", ZRMStubEnvironment(std::map<std::string, std::string>{{"HOME", "/home/me"}}));
    EXPECT_EQ(directories.documents(), "/home/me/Documents");
    EXPECT_EQ(directories.applicationSupport(), "/home/me/.local/share");
    EXPECT_EQ(directories.preferences(), "/home/me/.config");
}

TEST(ZRMLinuxDirectories, ARelativeXdgPathCountsAsNotSet) {
    const ZRMLinuxDirectories directories(
        "", ZRMStubEnvironment(
                {{"HOME", "/home/me"}, {"XDG_DATA_HOME", "data"}, {"XDG_CONFIG_HOME", ""}}));
    EXPECT_EQ(directories.applicationSupport(), "/home/me/.local/share");
    EXPECT_EQ(directories.preferences(), "/home/me/.config");
}

TEST(ZRMLinuxDirectories, WithoutAnyVariableTheAccountsHomeHolds) {
    const ZRMLinuxDirectories directories("", ZRMStubEnvironment({}));
    EXPECT_TRUE(directories.documents().starts_with('/'));
    EXPECT_TRUE(directories.documents().ends_with("/Documents"));
}
