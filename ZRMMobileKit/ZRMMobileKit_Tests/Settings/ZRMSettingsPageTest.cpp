#include <fstream>
#include <sstream>

#include <gtest/gtest.h>

#include "ZRMMobileKit/ZRMMobileKit_Tests/Settings/ZRMSettingsPage.h"

TEST(ZRMSettingsPage, IsWhatTheTableSays) {
    std::ifstream file(ZRM_SOURCE_DIR "/docs/formats/settings.md");
    std::ostringstream page;
    page << file.rdbuf();

    EXPECT_EQ(page.str(), zrm_settingsPage()) << "run zrm_settings_page > docs/formats/settings.md";
}
