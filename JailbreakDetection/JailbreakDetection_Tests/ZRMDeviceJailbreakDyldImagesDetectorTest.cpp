#include <gtest/gtest.h>

#include "JailbreakDetection/Detectors/ZRMDeviceJailbreakDyldImagesDetector.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedLoader.h"

namespace {

struct FixedBundle final : ZRMMainBundle {
    explicit FixedBundle(std::string itsPath) : path_(std::move(itsPath)) {}
    [[nodiscard]] std::string path() const override { return path_; }
    [[nodiscard]] std::optional<std::string> identifier() const override { return std::nullopt; }
    [[nodiscard]] std::optional<std::string> infoText(const std::string&) const override {
        return std::nullopt;
    }
    std::string path_;
};

struct ZRMDeviceJailbreakDyldImagesDetectorTest : ::testing::Test {
    ZRMSimulatedDevice device;
    ZRMScopedPlatform installed{device};
    std::shared_ptr<ZRMSimulatedLoader> loader = std::make_shared<ZRMSimulatedLoader>();
    std::shared_ptr<ZRMDyldWatcher> watcher = std::make_shared<ZRMDyldWatcher>(loader);

    [[nodiscard]] ZRMDeviceJailbreakDyldImagesDetector detector(
        const std::string& bundle = "/var/containers/Bank.app") const {
        return {watcher, std::make_shared<FixedBundle>(bundle)};
    }
    [[nodiscard]] bool isTrusted(const std::string& path) const {
        return detector().isTrustedDyldImage({path, 0});
    }
};

}  // namespace

TEST_F(ZRMDeviceJailbreakDyldImagesDetectorTest, IsOfType2) {
    EXPECT_EQ(detector().detectorType(), 2U);
}

TEST_F(ZRMDeviceJailbreakDyldImagesDetectorTest, TrustsTheSystemsDirectories) {
    for (const char* const directory : {"/Developer/Library/",
                                        "/Developer/usr/lib/",
                                        "/System/Library/AccessibilityBundles/",
                                        "/System/Library/Accounts/",
                                        "/System/Library/Assistant/",
                                        "/System/Library/Audio/",
                                        "/System/Library/CardKit/",
                                        "/System/Library/CardServices/",
                                        "/System/Library/CoreServices/",
                                        "/System/Library/Extensions/",
                                        "/System/Library/Frameworks/",
                                        "/System/Library/Health/",
                                        "/System/Library/Messages/",
                                        "/System/Library/PrivateFrameworks/",
                                        "/System/Library/SystemConfiguration/",
                                        "/System/Library/TTSPlugins/",
                                        "/System/Library/TextInput/",
                                        "/System/Library/VideoEncoders/",
                                        "/System/Library/VideoProcessors/",
                                        "/usr/lib/",
                                        "/private/preboot/Cryptexes/OS/"}) {
        EXPECT_TRUE(isTrusted(std::string(directory) + "Some.dylib")) << directory;
    }
    // 21 of the system's, 2 spellings of the bundle's.
    EXPECT_EQ(detector().trustedDyldImageDirectories().size(), 23U);
}

TEST_F(ZRMDeviceJailbreakDyldImagesDetectorTest, AnImageOutsideEveryTrustedDirectoryIsUntrusted) {
    EXPECT_FALSE(isTrusted("/Library/Tweaks/a.dylib"));
    EXPECT_FALSE(isTrusted("usr/lib/a.dylib"));
    EXPECT_FALSE(isTrusted(""));
}

TEST_F(ZRMDeviceJailbreakDyldImagesDetectorTest, AKeywordInAnyCaseOutweighsATrustedDirectory) {
    EXPECT_FALSE(isTrusted("/usr/lib/libcydiahelper.dylib"));
    EXPECT_FALSE(isTrusted("/usr/lib/MOBILESUBSTRATE.dylib"));
    EXPECT_FALSE(isTrusted("/System/Library/Frameworks/cydiasubstrate.FRAMEWORK/x"));
    EXPECT_TRUE(isTrusted("/usr/lib/MobileSubstrate.txt"));
    EXPECT_EQ(
        ZRMDeviceJailbreakDyldImagesDetector::untrustedDyldImageKeywords(),
        (std::set<std::string>{"MobileSubstrate.dylib", "CydiaSubstrate.framework", "Cydia"}));
}

TEST_F(ZRMDeviceJailbreakDyldImagesDetectorTest, TheBundleIsRecognisedUnderBothSpellings) {
    EXPECT_TRUE(isTrusted("/var/containers/Bank.app/Frameworks/a.dylib"));
    EXPECT_TRUE(isTrusted("/private/var/containers/Bank.app/Frameworks/a.dylib"));
    EXPECT_EQ(detector("/private/var/x/Bank.app").mainBundleTrustedDirs(),
              (std::set<std::string>{"/private/var/x/Bank.app", "/var/x/Bank.app"}));
    EXPECT_EQ(detector("/opt/Bank.app").mainBundleTrustedDirs(),
              std::set<std::string>{"/opt/Bank.app"});
    EXPECT_EQ(detector("/var").mainBundleTrustedDirs(), std::set<std::string>{"/var"});
    EXPECT_TRUE(detector("").mainBundleTrustedDirs().empty());
}

TEST_F(ZRMDeviceJailbreakDyldImagesDetectorTest, SiblingsWhoseNamesBeginLikeTheBundleAreTrusted) {
    EXPECT_TRUE(isTrusted("/var/containers/Bank.app.evil/a.dylib"));
}

TEST_F(ZRMDeviceJailbreakDyldImagesDetectorTest, TheTrustedSetIsMadeOnceByWhoeverAsksFirst) {
    EXPECT_TRUE(detector("/opt/First.app").isTrustedDyldImage({"/opt/First.app/a", 0}));
    EXPECT_FALSE(detector("/opt/Second.app").isTrustedDyldImage({"/opt/Second.app/a", 0}));
}

TEST_F(ZRMDeviceJailbreakDyldImagesDetectorTest, TrustedImagesAreNoTrait) {
    loader->load("/var/containers/Bank.app/Bank", 0x100);
    loader->load("/usr/lib/a.dylib", 0x200);
    EXPECT_FALSE(detector().isJailbroken());
}

TEST_F(ZRMDeviceJailbreakDyldImagesDetectorTest, AnUntrustedImageLoadedNowIsATrait) {
    loader->load("/usr/lib/a.dylib", 0x200);
    loader->load("/Library/Tweaks/a.dylib", 0x300);
    EXPECT_TRUE(detector().isJailbroken());
}

TEST_F(ZRMDeviceJailbreakDyldImagesDetectorTest, OnePathAtTwoAddressesIsATrait) {
    loader->load("/usr/lib/a.dylib", 0x200);
    loader->load("/usr/lib/a.dylib", 0x300);
    EXPECT_TRUE(detector().isJailbroken());
}

TEST_F(ZRMDeviceJailbreakDyldImagesDetectorTest, OnePathTwiceAtOneAddressIsNoTrait) {
    loader->load("/usr/lib/a.dylib", 0x200);
    loader->load("/usr/lib/a.dylib", 0x200);
    EXPECT_FALSE(detector().isJailbroken());
}

TEST_F(ZRMDeviceJailbreakDyldImagesDetectorTest, AnUntrustedImageOnceAttachedStaysATrait) {
    watcher->registerAddImageCallback();
    loader->load("/Library/Tweaks/a.dylib", 0x300);
    loader->unload("/Library/Tweaks/a.dylib");
    EXPECT_TRUE(detector().isJailbroken());
}
