#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "ZRMPlatform/Linux/ZRMLinuxJailbreakTraits.h"

namespace {

struct ZRMLinuxUrlOpenerTest : ::testing::Test {
    ZRMLinuxUrlOpenerTest() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "zrm-opener-XXXXXX").string();
        folder = mkdtemp(pattern.data());
        std::ofstream(folder + "/mimeinfo.cache")
            << "[MIME Cache]\nx-scheme-handler/cydia=manager.desktop;\nx-scheme-handler/empty=\n";
    }
    ~ZRMLinuxUrlOpenerTest() override { std::filesystem::remove_all(folder); }

    std::string folder;
    [[nodiscard]] ZRMLinuxUrlOpener opener() const {
        return ZRMLinuxUrlOpener({folder + "/missing.list", folder + "/mimeinfo.cache"});
    }
};

}  // namespace

TEST_F(ZRMLinuxUrlOpenerTest, ARegisteredSchemeCanBeOpenedInAnyCase) {
    EXPECT_TRUE(opener().canOpenUrl("cydia://package"));
    EXPECT_TRUE(opener().canOpenUrl("CYDIA:package"));
}

TEST_F(ZRMLinuxUrlOpenerTest, OtherSchemesAndTextsWithoutOneCannot) {
    for (const char* const url :
         {"cydiax://package", "empty:x", "cydia", "", ":", "1cydia:x", "x=y:z"}) {
        EXPECT_FALSE(opener().canOpenUrl(url)) << url;
    }
}

TEST(ZRMLinuxCommandProcessorTest, AnswersWhatTheCLibraryDoes) {
    EXPECT_EQ(ZRMLinuxCommandProcessor().availability() != 0, std::system(nullptr) != 0);
}

TEST(ZRMLinuxFileAccessTest, SpeaksForTheProcess) {
    const ZRMLinuxFileAccess access;
    EXPECT_TRUE(access.isReadable("/proc/self/status"));
    EXPECT_FALSE(access.isReadable("/nowhere/at/all"));
    EXPECT_FALSE(access.isWritable("/nowhere/at/all"));
    EXPECT_TRUE(access.isWritable("/dev/null"));
}
