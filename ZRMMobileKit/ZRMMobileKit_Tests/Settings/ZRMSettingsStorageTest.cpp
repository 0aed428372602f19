#include <cerrno>

#include <gtest/gtest.h>

#include "ZRMMobileKit/ZRMMobileKit_Lib/Categories/NSFileManager/NSFileManager+ZRMMobileKit.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/Storage/ZRMSettingsStorage.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

class ZRMSettingsStorageTest : public testing::Test {
  protected:
    ZRMSettingsStorage storage() const {
        return {device_.platform()->fileManager, device_.platform()->directories};
    }
    [[nodiscard]] std::string directory() const {
        return zrm_mobileKitSettingsDirectory(*device_.platform()->directories);
    }
    [[nodiscard]] std::string path() const {
        return zrm_mobileKitSettingsFilePath(*device_.platform()->directories);
    }
    void fail(ZRMSimulatedDiskOperation operation, const std::string& pattern, int error) {
        ZRMSimulatedDiskFault fault;
        fault.operation = operation;
        fault.pathPattern = pattern;
        fault.errorNumber = error;
        device_.disk().faults().add(fault);
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    const ZRMData bytes_ = zrm_dataFromText("{\"payload\":\"e30\"}\n");
};

}  // namespace

TEST_F(ZRMSettingsStorageTest, LiesInTheDirectoryZrmOfTheApplicationSupportDirectory) {
    EXPECT_EQ(directory(), device_.platform()->directories->applicationSupport() + "/ZRM");
    EXPECT_EQ(path(), directory() + "/zrm.settings");
}

TEST_F(ZRMSettingsStorageTest, ReadsNothingWithoutAFile) {
    EXPECT_EQ(storage().readSettings(), std::nullopt);
}

TEST_F(ZRMSettingsStorageTest, KeepsTheBytesAsTheyAre) {
    EXPECT_EQ(storage().writeSettings(bytes_), std::nullopt);
    EXPECT_EQ(storage().readSettings(), bytes_);
    EXPECT_EQ(device_.disk().bytesOf(path()), bytes_);
    EXPECT_EQ(storage().writeSettings({}), std::nullopt);
    EXPECT_EQ(storage().readSettings(), ZRMData());
}

TEST_F(ZRMSettingsStorageTest, MakesTheDirectoryOutsideOfBackups) {
    EXPECT_EQ(storage().writeSettings(bytes_), std::nullopt);
    EXPECT_TRUE(device_.disk().holdsDirectory(directory()));
    EXPECT_TRUE(device_.disk().isExcludedFromBackup(directory()));
}

TEST_F(ZRMSettingsStorageTest, LeavesTheMarksOfADirectoryThatIsThere) {
    EXPECT_EQ(device_.platform()->fileManager->createDirectory(directory()), std::nullopt);
    EXPECT_EQ(storage().writeSettings(bytes_), std::nullopt);
    EXPECT_FALSE(device_.disk().isExcludedFromBackup(directory()));
}

TEST_F(ZRMSettingsStorageTest, FailsWhereAFileStandsInTheDirectorysPlace) {
    device_.disk().put(directory(), "a file");
    const auto error = storage().writeSettings(bytes_);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain(), kZRMPosixErrorDomain);
    EXPECT_EQ(device_.disk().bytesOf(directory()), zrm_dataFromText("a file"));
}

TEST_F(ZRMSettingsStorageTest, FailsWithTheErrorOfTheStepThatFailed) {
    fail(ZRMSimulatedDiskOperation::MakeDirectory, "*/ZRM", EACCES);
    EXPECT_EQ(storage().writeSettings(bytes_)->code(), EACCES);
    device_.disk().faults().clear();
    fail(ZRMSimulatedDiskOperation::Mark, "*/ZRM", EPERM);
    EXPECT_EQ(storage().writeSettings(bytes_)->code(), EPERM);
    EXPECT_EQ(storage().readSettings(), std::nullopt);
    device_.disk().faults().clear();
    fail(ZRMSimulatedDiskOperation::Write, "*", ENOSPC);
    EXPECT_EQ(storage().writeSettings(bytes_)->code(), ENOSPC);
    EXPECT_EQ(storage().readSettings(), std::nullopt);
}

TEST_F(ZRMSettingsStorageTest, FailedWriteLeavesTheOldBytes) {
    EXPECT_EQ(storage().writeSettings(bytes_), std::nullopt);
    fail(ZRMSimulatedDiskOperation::Write, "*", ENOSPC);
    EXPECT_EQ(storage().writeSettings(zrm_dataFromText("new")).has_value(), true);
    EXPECT_EQ(storage().readSettings(), bytes_);
}

TEST_F(ZRMSettingsStorageTest, ReadsNothingWhereTheFileCannotBeRead) {
    EXPECT_EQ(storage().writeSettings(bytes_), std::nullopt);
    fail(ZRMSimulatedDiskOperation::Read, "*", EIO);
    fail(ZRMSimulatedDiskOperation::Open, "*", EIO);
    EXPECT_EQ(storage().readSettings(), std::nullopt);
}

TEST_F(ZRMSettingsStorageTest, DefaultStorageIsOneForTheProcess) {
    const auto storage = ZRMSettingsStorage::defaultStorage();
    EXPECT_EQ(ZRMSettingsStorage::defaultStorage(), storage);
    EXPECT_EQ(storage->writeSettings(bytes_), std::nullopt);
    EXPECT_EQ(this->storage().readSettings(), bytes_);
    device_.restartProcess();
    EXPECT_NE(ZRMSettingsStorage::defaultStorage(), storage);
    EXPECT_EQ(ZRMSettingsStorage::defaultStorage()->readSettings(), bytes_);
}
