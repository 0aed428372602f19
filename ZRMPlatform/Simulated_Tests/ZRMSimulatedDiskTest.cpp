#include <cerrno>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

using testing::ElementsAre;
using Operation = ZRMSimulatedDiskOperation;

namespace {

const std::string kHome = "/device/home";
const std::string kFile = kHome + "/file";

class ZRMSimulatedDiskTest : public testing::Test {
  protected:
    void SetUp() override { ASSERT_FALSE(files().createDirectory(kHome)); }

    ZRMFileManager& files() { return *device.platform()->fileManager; }
    std::unique_ptr<ZRMFileHandle> open(const std::string& path) {
        auto handle = files().openForUpdating(path);
        EXPECT_TRUE(handle);
        return handle ? std::move(handle).value() : nullptr;
    }

    ZRMSimulatedDevice device;
};

std::int64_t codeOf(const std::optional<ZRMError>& error) {
    return error ? error->code() : 0;
}

}  // namespace

TEST_F(ZRMSimulatedDiskTest, AKillKeepsUnsyncedWritesUnlessTold) {
    device.disk().put(kFile, "old");
    EXPECT_FALSE(open(kFile)->write(zrm_dataFromText("new")));
    device.restartProcess();
    EXPECT_EQ(zrm_textFromData(files().readFile(kFile).value()), "new");
}

TEST_F(ZRMSimulatedDiskTest, ALostPowerTakesUnsyncedWritesAndKeepsSyncedOnes) {
    device.disk().put(kFile, "old");
    auto handle = open(kFile);
    EXPECT_FALSE(handle->write(zrm_dataFromText("NEW and")));
    EXPECT_FALSE(handle->synchronize());
    EXPECT_FALSE(handle->write(zrm_dataFromText(" longer")));
    device.restartProcess(ZRMSimulatedLoss::All);
    EXPECT_EQ(zrm_textFromData(files().readFile(kFile).value()), "NEW and");
}

TEST_F(ZRMSimulatedDiskTest, ALostPowerBringsBackWhatAnUnsyncedTruncationTook) {
    device.disk().put(kFile, "0123456789");
    EXPECT_FALSE(open(kFile)->truncateAt(3));
    device.restartProcess(ZRMSimulatedLoss::All);
    EXPECT_EQ(zrm_textFromData(files().readFile(kFile).value()), "0123456789");
}

TEST_F(ZRMSimulatedDiskTest, ALostPowerKeepsTheNamesOfFilesWhoseBytesItTakes) {
    EXPECT_FALSE(files().createFile(kFile));
    EXPECT_FALSE(open(kFile)->write(zrm_dataFromText("never synced")));
    device.restartProcess(ZRMSimulatedLoss::All);
    EXPECT_TRUE(files().fileExists(kFile));
    EXPECT_TRUE(files().readFile(kFile).value().empty());
}

TEST_F(ZRMSimulatedDiskTest, SomeLossKeepsEachUnsyncedSectorWholeOrNotAtAll) {
    constexpr std::size_t kSector = ZRMSimulatedFile::kSectorSize;
    constexpr std::size_t kSectors = 64;
    device.disk().put(kFile, ZRMData(kSector * kSectors, 'o'));
    EXPECT_FALSE(open(kFile)->write(ZRMData(kSector * kSectors, 'n')));
    device.restartProcess(ZRMSimulatedLoss::Some);
    const ZRMData left = files().readFile(kFile).value();
    ASSERT_EQ(left.size(), kSector * kSectors);
    std::size_t kept = 0;
    for (std::size_t sector = 0; sector < kSectors; ++sector) {
        const auto begin = left.begin() + static_cast<std::ptrdiff_t>(sector * kSector);
        const ZRMData bytes(begin, begin + kSector);
        EXPECT_TRUE(bytes == ZRMData(kSector, 'o') || bytes == ZRMData(kSector, 'n'));
        kept += bytes.front() == 'n' ? 1 : 0;
    }
    EXPECT_GT(kept, 0u);
    EXPECT_LT(kept, kSectors);
}

TEST_F(ZRMSimulatedDiskTest, AnAtomicWriteSurvivesALostPower) {
    EXPECT_FALSE(files().writeFileAtomically(kFile, zrm_dataFromText("old")));
    EXPECT_FALSE(files().writeFileAtomically(kFile, zrm_dataFromText("new")));
    device.restartProcess(ZRMSimulatedLoss::All);
    EXPECT_EQ(zrm_textFromData(files().readFile(kFile).value()), "new");
}

TEST_F(ZRMSimulatedDiskTest, AnAtomicWriteKilledAtAnyOperationLeavesAllTheOldOrAllTheNewBytes) {
    bool sawNew = false;
    for (std::uint64_t step = 1; !sawNew; ++step) {
        ASSERT_LT(step, 20u);
        device.disk().put(kFile, "old");
        device.killAtDiskOperation(device.disk().faults().operationCount() + step);
        files().writeFileAtomically(kFile, zrm_dataFromText("new"));
        device.restartProcess(ZRMSimulatedLoss::All);
        const std::string left = zrm_textFromData(device.disk().bytesOf(kFile));
        EXPECT_TRUE(left == "old" || left == "new") << left;
        sawNew = left == "new";
    }
}

TEST_F(ZRMSimulatedDiskTest, AFullDiskTakesNoMoreBytesAndSaysSo) {
    device.disk().put(kFile, "1234");
    device.disk().setCapacity(device.disk().usedBytes() + 2);
    auto handle = open(kFile);
    EXPECT_FALSE(handle->seekToEnd());
    EXPECT_EQ(codeOf(handle->write(zrm_dataFromText("567"))), ENOSPC);
    EXPECT_EQ(zrm_textFromData(device.disk().bytesOf(kFile)), "1234");
    EXPECT_FALSE(handle->write(zrm_dataFromText("56")));
    EXPECT_EQ(codeOf(files().writeFileAtomically(kFile, ZRMData(10))), ENOSPC);
    EXPECT_THAT(device.disk().filesBelow(kHome), ElementsAre(kFile));
}

TEST_F(ZRMSimulatedDiskTest, AFaultStrikesTheOperationsAndPathsOfItsRule) {
    device.disk().faults().add(
        {.operation = Operation::Write, .pathPattern = "*/fi*", .errorNumber = EROFS});
    device.disk().put(kFile, "1");
    device.disk().put(kHome + "/other", "1");
    EXPECT_EQ(codeOf(open(kFile)->write(ZRMData{1})), EROFS);
    EXPECT_FALSE(open(kHome + "/other")->write(ZRMData{1}));
    device.disk().faults().clear();
    EXPECT_FALSE(open(kFile)->write(ZRMData{1}));
}

TEST_F(ZRMSimulatedDiskTest, AFaultSkipsAndThenStrikesSoManyTimes) {
    device.disk().faults().add({.operation = Operation::Create, .skip = 1, .times = 2});
    std::vector<bool> failed;
    for (int index = 0; index < 5; ++index) {
        failed.push_back(files().createFile(kFile).has_value());
    }
    EXPECT_THAT(failed, ElementsAre(false, true, true, false, false));
}

TEST_F(ZRMSimulatedDiskTest, TheOperationOfANumberCanFail) {
    device.disk().faults().failOperation(device.disk().faults().operationCount() + 2, EACCES);
    EXPECT_FALSE(files().createFile(kFile));
    EXPECT_EQ(codeOf(files().createFile(kFile)), EACCES);
    EXPECT_FALSE(files().createFile(kFile));
}

TEST_F(ZRMSimulatedDiskTest, TheHookSeesEachOperationBeforeItTakesEffect) {
    std::vector<std::string> seen;
    device.disk().faults().setHook(
        [&](std::uint64_t, Operation operation, const std::string& path) {
            EXPECT_EQ(operation, Operation::Create);
            EXPECT_FALSE(device.disk().holdsFile(path));
            seen.push_back(path);
        });
    EXPECT_FALSE(files().createFile(kFile));
    EXPECT_THAT(seen, ElementsAre(kFile));
}

TEST_F(ZRMSimulatedDiskTest, CreationDatesComeFromTheVirtualClock) {
    device.advanceBy(1000);
    EXPECT_FALSE(files().createFile(kFile));
    const ZRMDate created = device.now();
    device.advanceBy(1000);
    EXPECT_FALSE(files().createFile(kFile));
    EXPECT_EQ(files().creationDate(kFile).value(), created);
}

TEST_F(ZRMSimulatedDiskTest, ShowsWhatIsExcludedFromBackup) {
    device.disk().put(kFile, "1");
    EXPECT_FALSE(device.disk().isExcludedFromBackup(kFile));
    EXPECT_FALSE(files().excludeFromBackup(kFile));
    EXPECT_TRUE(device.disk().isExcludedFromBackup(kFile));
}

TEST_F(ZRMSimulatedDiskTest, MovesDirectoriesWithAllTheyHold) {
    device.disk().put(kHome + "/a/b/one", "1");
    device.disk().put(kHome + "/a2", "2");
    EXPECT_FALSE(files().moveItem(kHome + "/a", kHome + "/c"));
    EXPECT_THAT(device.disk().filesBelow(kHome), ElementsAre(kHome + "/a2", kHome + "/c/b/one"));
    EXPECT_EQ(codeOf(files().moveItem(kHome + "/c", kHome + "/c/inside")), EINVAL);
}

TEST(ZRMSimulatedDiskFaults, PatternsMatchWithStars) {
    EXPECT_TRUE(ZRMSimulatedDiskFaults::matches("*", ""));
    EXPECT_TRUE(ZRMSimulatedDiskFaults::matches("*.sqlite*", "/a/b.sqlite-wal"));
    EXPECT_TRUE(ZRMSimulatedDiskFaults::matches("/a/*/c", "/a/b/x/c"));
    EXPECT_TRUE(ZRMSimulatedDiskFaults::matches("*aab", "aaaab"));
    EXPECT_FALSE(ZRMSimulatedDiskFaults::matches("/a", "/ab"));
    EXPECT_FALSE(ZRMSimulatedDiskFaults::matches("*.sqlite", "/a/b.sqlite-wal"));
    EXPECT_FALSE(ZRMSimulatedDiskFaults::matches("", "a"));
}
