#include <filesystem>
#include <map>

#include <gtest/gtest.h>

#include "ZRMPlatform/Linux/ZRMLinuxDirectories.h"

namespace {

class StubEnvironment : public ZRMProcessEnvironment {
  public:
    explicit StubEnvironment(std::map<std::string, std::string> variables)
        : variables_(std::move(variables)) {}
    [[nodiscard]] std::optional<std::string> variable(const std::string& name) const override {
        const auto found = variables_.find(name);
        return found == variables_.end() ? std::nullopt : std::optional(found->second);
    }

  private:
    std::map<std::string, std::string> variables_;
};

}  // namespace

TEST(ZRMLinuxDirectories, AHomeHoldsEverythingWhateverTheEnvironmentSays) {
    const StubEnvironment environment({{"HOME", "/other"}, {"XDG_DATA_HOME", "/elsewhere"}});
    const ZRMLinuxDirectories directories("/srv/app/", environment);
    EXPECT_EQ(directories.documents(), "/srv/app/Documents");
    EXPECT_EQ(directories.applicationSupport(), "/srv/app/Library/Application Support");
    EXPECT_EQ(directories.preferences(), "/srv/app/Library/Preferences");
    EXPECT_EQ(directories.keychains(), "/srv/app/Library/Keychains");
    EXPECT_EQ(directories.databaseFileLayer(), "");
}

TEST(ZRMLinuxDirectories, ARelativeHomeIsTakenFromTheWorkingDirectory) {
    const ZRMLinuxDirectories directories("some/./home", StubEnvironment({}));
    EXPECT_EQ(directories.documents(),
              std::filesystem::current_path().string() + "/some/home/Documents");
}

TEST(ZRMLinuxDirectories, WithoutAHomeTheXdgDirectoriesHold) {
    const ZRMLinuxDirectories directories("", StubEnvironment({{"HOME", "/home/me"},
                                                               {"XDG_DOCUMENTS_DIR", "/docs/"},
                                                               {"XDG_DATA_HOME", "/data"},
                                                               {"XDG_CONFIG_HOME", "/config"}}));
    EXPECT_EQ(directories.documents(), "/docs");
    EXPECT_EQ(directories.applicationSupport(), "/data");
    EXPECT_EQ(directories.preferences(), "/config");
    EXPECT_EQ(directories.keychains(), "/data/keychains");
}

TEST(ZRMLinuxDirectories, WithoutXdgVariablesTheirDefaultsHold) {
    const ZRMLinuxDirectories directories("", StubEnvironment({{"HOME", "/home/me"}}));
    EXPECT_EQ(directories.documents(), "/home/me/Documents");
    EXPECT_EQ(directories.applicationSupport(), "/home/me/.local/share");
    EXPECT_EQ(directories.preferences(), "/home/me/.config");
}

TEST(ZRMLinuxDirectories, ARelativeXdgPathCountsAsNotSet) {
    const ZRMLinuxDirectories directories(
        "", StubEnvironment(
                {{"HOME", "/home/me"}, {"XDG_DATA_HOME", "data"}, {"XDG_CONFIG_HOME", ""}}));
    EXPECT_EQ(directories.applicationSupport(), "/home/me/.local/share");
    EXPECT_EQ(directories.preferences(), "/home/me/.config");
}

TEST(ZRMLinuxDirectories, WithoutAnyVariableTheAccountsHomeHolds) {
    const ZRMLinuxDirectories directories("", StubEnvironment({}));
    EXPECT_TRUE(directories.documents().starts_with('/'));
    EXPECT_TRUE(directories.documents().ends_with("/Documents"));
}
