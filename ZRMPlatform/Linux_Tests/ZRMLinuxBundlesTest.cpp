#include <filesystem>

#include <gtest/gtest.h>

#include "ZRMPlatform/Linux/ZRMLinuxMainBundle.h"
#include "ZRMPlatform/Linux/ZRMLinuxPropertyList.h"
#include "ZRMPlatform/Linux/ZRMLinuxResourceBundles.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

namespace {

constexpr const char* kInfo =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\"><dict>"
    "<key>CFBundleIdentifier</key><string>com.example.bank</string>"
    "<key>CFBundleVersion</key><string>12</string>"
    "<key>Number</key><integer>5</integer></dict></plist>";

std::string executableDirectory() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path().string();
}

}  // namespace

TEST(ZRMLinuxMainBundle, TellsWhatInfoPlistSays) {
    const ZRMTestDirectory directory;
    directory.writeFile("Info.plist", kInfo);
    const ZRMLinuxMainBundle bundle(directory.path() + "/");
    EXPECT_EQ(bundle.path(), directory.path());
    EXPECT_EQ(bundle.identifier(), "com.example.bank");
    EXPECT_EQ(bundle.infoText("CFBundleVersion"), "12");
    EXPECT_EQ(bundle.infoText("Number"), std::nullopt);
    EXPECT_EQ(bundle.infoText("Other"), std::nullopt);
}

TEST(ZRMLinuxMainBundle, ReadsTheBinaryFormAsWell) {
    const ZRMTestDirectory directory;
    const auto list = zrm_readPropertyList(zrm_dataFromText(kInfo));
    directory.writeFile("Info.plist", zrm_textFromData(zrm_writeBinaryPropertyList(list.get())));
    EXPECT_EQ(ZRMLinuxMainBundle(directory.path()).identifier(), "com.example.bank");
}

TEST(ZRMLinuxMainBundle, WithoutAReadableInfoPlistEveryEntryIsAbsent) {
    const ZRMTestDirectory directory;
    EXPECT_EQ(ZRMLinuxMainBundle(directory.path()).identifier(), std::nullopt);
    directory.writeFile("Info.plist", "garbage");
    EXPECT_EQ(ZRMLinuxMainBundle(directory.path()).identifier(), std::nullopt);
    directory.writeFile("Info.plist", "<plist version=\"1.0\"><array/></plist>");
    EXPECT_EQ(ZRMLinuxMainBundle(directory.path()).identifier(), std::nullopt);
}

TEST(ZRMLinuxMainBundle, WithoutADirectoryItIsThatOfTheExecutable) {
    EXPECT_EQ(ZRMLinuxMainBundle("").path(), executableDirectory());
}

TEST(ZRMLinuxMainBundle, ARelativeDirectoryIsMadeAbsolute) {
    EXPECT_EQ(ZRMLinuxMainBundle("some/app").path(),
              std::filesystem::current_path().string() + "/some/app");
}

TEST(ZRMLinuxResourceBundles, FindsDirectoriesByName) {
    const ZRMTestDirectory directory;
    directory.writeFile("One.bundle/file", "");
    directory.writeFile("Two.bundle", "no directory");
    const ZRMLinuxResourceBundles bundles(directory.path());
    EXPECT_EQ(bundles.pathForBundle("One.bundle"), directory.below("One.bundle"));
    EXPECT_EQ(bundles.pathForBundle("Two.bundle"), std::nullopt);
    EXPECT_EQ(bundles.pathForBundle("Three.bundle"), std::nullopt);
}

TEST(ZRMLinuxResourceBundles, ANameThatIsNoComponentHasNoBundle) {
    const ZRMTestDirectory directory;
    directory.writeFile("inner/One.bundle/file", "");
    const ZRMLinuxResourceBundles bundles(directory.below("inner"));
    for (const char* name : {"", ".", "..", "../inner", "/tmp", "One.bundle/"}) {
        EXPECT_EQ(bundles.pathForBundle(name), std::nullopt) << name;
    }
}

TEST(ZRMLinuxResourceBundles, WithoutADirectoryTheyLieBesideTheImage) {
    const auto path = executableDirectory() + "/ZRMLinuxBundlesTest.bundle";
    std::filesystem::create_directory(path);
    EXPECT_EQ(ZRMLinuxResourceBundles("").pathForBundle("ZRMLinuxBundlesTest.bundle"), path);
    std::filesystem::remove(path);
    EXPECT_EQ(ZRMLinuxResourceBundles("").pathForBundle("ZRMLinuxBundlesTest.bundle"),
              std::nullopt);
}
