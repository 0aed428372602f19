#include <gtest/gtest.h>

#include "JailbreakDetection/Detectors/ZRMDeviceJailbreakFSPermissionsDetector.h"
#include "JailbreakDetection/Detectors/ZRMDeviceJailbreakSysCallsDetector.h"
#include "JailbreakDetection/Detectors/ZRMDeviceJailbreakUrlSchemesDetector.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedJailbreakTraits.h"

namespace {

struct ZRMJailbreakFixture : ::testing::Test {
    ZRMSimulatedDevice device;
    std::shared_ptr<ZRMSimulatedFileAccess> files = std::make_shared<ZRMSimulatedFileAccess>();
    std::shared_ptr<ZRMSimulatedUrlOpener> opener =
        std::make_shared<ZRMSimulatedUrlOpener>(device.platform()->executor->mainQueue());
    std::shared_ptr<ZRMSimulatedCommandProcessor> commands =
        std::make_shared<ZRMSimulatedCommandProcessor>();
    std::string infoPlist = device.platform()->mainBundle->path() + "/Info.plist";

    [[nodiscard]] ZRMDeviceJailbreakUrlSchemesDetector urlSchemes() const {
        return {opener, device.platform()->executor, device.platform()->clock};
    }
};

using ZRMDeviceJailbreakFSPermissionsDetectorTest = ZRMJailbreakFixture;
using ZRMDeviceJailbreakSysCallsDetectorTest = ZRMJailbreakFixture;
using ZRMDeviceJailbreakUrlSchemesDetectorTest = ZRMJailbreakFixture;

}  // namespace

TEST_F(ZRMDeviceJailbreakFSPermissionsDetectorTest, IsOfType1) {
    ZRMDeviceJailbreakFSPermissionsDetector detector(files, device.platform()->mainBundle);
    EXPECT_EQ(detector.detectorType(), 1U);
}

TEST_F(ZRMDeviceJailbreakFSPermissionsDetectorTest, AStockDeviceIsNotJailbroken) {
    ZRMDeviceJailbreakFSPermissionsDetector detector(files, device.platform()->mainBundle);
    EXPECT_FALSE(detector.isJailbroken());
    EXPECT_EQ(files->questions, (std::vector<std::string>{"/Applications", infoPlist}));
}

TEST_F(ZRMDeviceJailbreakFSPermissionsDetectorTest, AReadableApplicationsFolderEndsTheExamination) {
    files->readablePaths = {"/Applications"};
    ZRMDeviceJailbreakFSPermissionsDetector detector(files, device.platform()->mainBundle);
    EXPECT_TRUE(detector.isJailbroken());
    EXPECT_EQ(files->questions, std::vector<std::string>{"/Applications"});
    EXPECT_TRUE(detector.checkSysFilesPermissions());
    EXPECT_FALSE(detector.checkAppBundlePermissions());
}

TEST_F(ZRMDeviceJailbreakFSPermissionsDetectorTest, AWritableInfoPlistIsATrait) {
    files->writablePaths = {infoPlist};
    ZRMDeviceJailbreakFSPermissionsDetector detector(files, device.platform()->mainBundle);
    EXPECT_TRUE(detector.isJailbroken());
    EXPECT_FALSE(detector.checkSysFilesPermissions());
    EXPECT_TRUE(detector.checkAppBundlePermissions());
}

TEST_F(ZRMDeviceJailbreakSysCallsDetectorTest, IsOfType4AndTrueForAnyAnswerButZero) {
    ZRMDeviceJailbreakSysCallsDetector detector(commands);
    EXPECT_EQ(detector.detectorType(), 4U);
    EXPECT_FALSE(detector.isJailbroken());
    for (const int answer : {1, -1, 256}) {
        commands->available = answer;
        EXPECT_TRUE(detector.isJailbroken()) << answer;
    }
}

TEST_F(ZRMDeviceJailbreakUrlSchemesDetectorTest, IsOfType8AndAsksForThePackageManager) {
    auto detector = urlSchemes();
    EXPECT_EQ(detector.detectorType(), 8U);
    EXPECT_FALSE(detector.isJailbroken());
    opener->openableUrls = {"cydia://package"};
    EXPECT_TRUE(detector.isJailbroken());
    EXPECT_EQ(opener->questions().at(0).url, "cydia://package");
}

TEST_F(ZRMDeviceJailbreakUrlSchemesDetectorTest, AsksOnTheMainQueueAndBlocksOnlyItsCaller) {
    auto detector = urlSchemes();
    opener->openableUrls = {"cydia://package"};
    bool answer = false;
    device.platform()->executor->concurrentQueue(ZRMQualityOfService::Default)->post([&] {
        answer = detector.isJailbroken();
    });
    device.runUntilIdle();
    EXPECT_TRUE(answer);
    ASSERT_EQ(opener->questions().size(), 1U);
    EXPECT_TRUE(opener->questions()[0].onMainQueue);
}

TEST_F(ZRMDeviceJailbreakUrlSchemesDetectorTest, AsksDirectlyWhenOnTheMainQueue) {
    auto detector = urlSchemes();
    bool answered = false;
    device.platform()->executor->mainQueue()->post([&] {
        static_cast<void>(detector.isJailbroken());
        answered = true;
    });
    device.runUntilIdle();
    EXPECT_TRUE(answered);
    EXPECT_TRUE(opener->questions().at(0).onMainQueue);
}
