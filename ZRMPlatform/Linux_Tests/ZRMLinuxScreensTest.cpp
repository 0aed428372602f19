#include <gmock/gmock.h>

#include "ZRMPlatform/Linux/ZRMLinuxScreens.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

namespace {

class ZRMLinuxScreensTest : public testing::Test {
  protected:
    void add(const std::string& connector, std::string_view modes,
             std::string_view status = "connected\n") {
        directory_.writeFile("class/drm/" + connector + "/status", status);
        directory_.writeFile("class/drm/" + connector + "/modes", modes);
    }
    std::vector<std::pair<double, double>> sizes() {
        std::vector<std::pair<double, double>> sizes;
        for (const auto& screen : screens_.screens()) {
            sizes.emplace_back(screen.width, screen.height);
        }
        return sizes;
    }

    ZRMTestDirectory directory_;
    ZRMLinuxScreens screens_{directory_.path()};
};

using Size = std::pair<double, double>;

}  // namespace

TEST_F(ZRMLinuxScreensTest, AConnectedDisplayHasTheSizeOfItsFirstMode) {
    add("card0-HDMI-A-1", "1920x1080\n1280x720\n");
    const auto screens = screens_.screens();
    ASSERT_EQ(screens.size(), 1U);
    EXPECT_EQ(screens[0], (ZRMScreen{.isCaptured = std::nullopt,
                                     .hasMirroredScreen = false,
                                     .width = 1920,
                                     .height = 1080,
                                     .scale = 1,
                                     .nativeScale = 1}));
}

TEST_F(ZRMLinuxScreensTest, BuiltInPanelsComeFirst) {
    add("card0-DP-1", "2560x1440\n");
    add("card1-HDMI-A-1", "1920x1080i\n");
    add("card1-eDP-1", "1366x768\n");
    EXPECT_THAT(sizes(), testing::ElementsAre(Size{1366, 768}, Size{2560, 1440}, Size{1920, 1080}));
    for (const char* const panel : {"card9-LVDS-1", "card9-DSI-1", "card9-DPI-1"}) {
        ZRMTestDirectory other;
        other.writeFile("class/drm/card0-DP-1/status", "connected\n");
        other.writeFile("class/drm/" + std::string(panel) + "/status", "connected\n");
        other.writeFile("class/drm/" + std::string(panel) + "/modes", "800x480\n");
        EXPECT_EQ(ZRMLinuxScreens(other.path()).screens().at(0).width, 800) << panel;
    }
}

TEST_F(ZRMLinuxScreensTest, WhatIsNotConnectedDoesNotCount) {
    add("card0-DP-1", "", "disconnected\n");
    add("card0-Writeback-1", "", "unknown\n");
    add("card0-VGA-1", "800x600\n", "");
    add("card0-VGA-2", "800x600\n", "connected or not\n");
    EXPECT_TRUE(screens_.screens().empty());
}

TEST_F(ZRMLinuxScreensTest, WhatIsNoConnectorDoesNotCount) {
    EXPECT_TRUE(screens_.screens().empty());
    directory_.writeFile("class/drm/version", "drm 1.1.0 20060810\n");
    directory_.writeFile("class/drm/card0/status", "connected\n");
    directory_.writeFile("class/drm/renderD128-x/status", "connected\n");
    directory_.writeFile("class/drm/card0-/status", "connected\n");
    EXPECT_TRUE(screens_.screens().empty());
}

TEST_F(ZRMLinuxScreensTest, ADisplayWithoutAModeHasNoSize) {
    const std::string tooLong(100'000, '9');
    for (const auto& garbage :
         {std::string(), std::string("\n1920x1080\n"), std::string("1920\n"),
          std::string("1920x\n"), std::string("x1080\n"), std::string("-5x10\n"),
          std::string("99999x1080\n"), std::string("\xFFx\xFE\n"), tooLong, tooLong + "x1\n"}) {
        add("card0-DP-1", garbage);
        EXPECT_THAT(sizes(), testing::ElementsAre(Size{0, 0})) << garbage.substr(0, 20);
    }
}
