#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSFileManager/NSFileManager+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Tests/Support/ZRMRecordedLog.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

TEST(ZRMFileCreationDate, IsWhenTheFileWasMade) {
    ZRMSimulatedDevice device;
    auto& files = *device.platform()->fileManager;
    const auto directory = device.platform()->directories->documents();
    ASSERT_EQ(files.createDirectory(directory), std::nullopt);
    const auto made = device.now();
    ASSERT_EQ(files.createFile(directory + "/trace.log"), std::nullopt);
    device.advanceBy(60);
    const auto date = zrm_creationDateOfItemAtPath(files, directory + "/trace.log");
    ASSERT_TRUE(date);
    EXPECT_NEAR(date->secondsSince(made), 0, 1e-3);
}

TEST(ZRMFileCreationDate, IsAbsentAndLoggedWhenItCannotBeRead) {
    ZRMSimulatedDevice device;
    const ZRMScopedPlatform installed(device);
    const ZRMRecordedLog log;
    const auto& files = *device.platform()->fileManager;
    EXPECT_EQ(zrm_creationDateOfItemAtPath(files, "/device/home/missing"), std::nullopt);
    EXPECT_EQ(log.errors(),
              std::vector<std::string>{
                  files.creationDate("/device/home/missing").error().localizedDescription()});
}

TEST(ZRMDamagedItemPath, IsTheItemsWithTheTimeInWholeSeconds) {
    ZRMSimulatedDevice device;
    EXPECT_EQ(zrm_pathForDamagedItem(*device.platform()->fileManager, "/device/data/store",
                                     ZRMDate{1700000000.9}),
              "/device/data/store.damaged-1700000000");
}

TEST(ZRMDamagedItemPath, AvoidsEveryNameThatIsTakenOrBegunWith) {
    ZRMSimulatedDevice device;
    device.disk().put("/device/data/store.damaged-1700000000", "evidence");
    device.disk().put("/device/data/store.damaged-1700000001-wal", "evidence");
    EXPECT_EQ(zrm_pathForDamagedItem(*device.platform()->fileManager, "/device/data/store",
                                     ZRMDate{1700000000}),
              "/device/data/store.damaged-1700000002");
    EXPECT_EQ(zrm_pathForDamagedItem(*device.platform()->fileManager, "/device/data/other",
                                     ZRMDate{1700000000}),
              "/device/data/other.damaged-1700000000");
}
