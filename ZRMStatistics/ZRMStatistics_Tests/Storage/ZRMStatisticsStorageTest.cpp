#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>

#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsServiceFactory.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsSchema.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsStorage.h"
#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMStatisticsDeviceTest.h"

namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

constexpr const char* kModelDirectory = "/device/resources/ZRMStatisticsResources.bundle/";

using ZRMStatisticsStorageTest = ZRMStatisticsDeviceTest;

}  // namespace

TEST_F(ZRMStatisticsStorageTest, OpensAStoreAndMakesTheDirectoriesAboveIt) {
    const auto storage = openStorage();
    ASSERT_TRUE(storage);
    EXPECT_TRUE(device_.disk().holdsDirectory("/device/data"));
    EXPECT_TRUE(device_.disk().holdsFile(kStorePath));
    EXPECT_EQ(storage->configuration().storageUrl(), kStorePath);
    EXPECT_TRUE(storage->configuration().createIntermediateDirectories());
    EXPECT_TRUE(errors().empty());
}

TEST_F(ZRMStatisticsStorageTest, MakesNoDirectoriesWhenNotAskedTo) {
    const auto storage = ZRMStatisticsStorage::create(
        device_.platform(),
        ZRMStatisticsStorageConfiguration::configurationWithStorageUrl(kStorePath, false));
    EXPECT_FALSE(storage);
    EXPECT_FALSE(device_.disk().holdsDirectory("/device/data"));
}

TEST_F(ZRMStatisticsStorageTest, LiesInAFolderOfItsOwnNameBelowTheGivenDirectory) {
    EXPECT_EQ(ZRMStatisticsServiceFactory::storageUrlAtPath("/a/b"),
              "/a/b/ZRMStatisticsStorage/ZRMStatisticsStorage");
    EXPECT_EQ(ZRMStatisticsServiceFactory::storageUrlAtPath("/a/b/"),
              "/a/b/ZRMStatisticsStorage/ZRMStatisticsStorage");
    const auto storage =
        ZRMStatisticsServiceFactory::createStatisticsStorageAtPath(device_.platform(), "/a/b");
    ASSERT_TRUE(storage);
    EXPECT_TRUE(device_.disk().holdsFile("/a/b/ZRMStatisticsStorage/ZRMStatisticsStorage"));
}

TEST_F(ZRMStatisticsStorageTest, WithoutTheBundleThereIsNoModelAndNoStorage) {
    device_.disk().wipe();
    EXPECT_FALSE(openStorage());
    EXPECT_THAT(errors(), ElementsAre("Error: Bundle 'ZRMStatisticsResources.bundle' not found",
                                      "Error: CoreData model not found in bundle "
                                      "'ZRMStatisticsResources.bundle'"));
}

TEST_F(ZRMStatisticsStorageTest, BundleWithoutAModelGivesNoStorage) {
    device_.disk().wipe();
    device_.disk().put(std::string(kModelDirectory) + "Readme.txt", "no model");
    EXPECT_FALSE(openStorage());
    EXPECT_THAT(errors(), ElementsAre("Error: CoreData model not found in bundle "
                                      "'ZRMStatisticsResources.bundle'"));
}

TEST_F(ZRMStatisticsStorageTest, BrokenModelFileGivesNoStorage) {
    device_.disk().put(std::string(kModelDirectory) + "Other.json", "{");
    EXPECT_FALSE(openStorage());
    ASSERT_EQ(errors().size(), 2U);
    EXPECT_THAT(errors()[0], StartsWith("Can't read data model: "));
    EXPECT_EQ(errors()[1],
              "Error: CoreData model not found in bundle 'ZRMStatisticsResources.bundle'");
}

TEST_F(ZRMStatisticsStorageTest, UnreadableModelFileGivesNoStorage) {
    device_.disk().faults().add({ZRMSimulatedDiskOperation::Read, "*ZRMStatisticsModel.json"});
    EXPECT_FALSE(openStorage());
    EXPECT_TRUE(
        hasError("Error: CoreData model not found in bundle 'ZRMStatisticsResources.bundle'"));
}

TEST_F(ZRMStatisticsStorageTest, AllModelsOfTheBundleAreMerged) {
    device_.disk().put(
        std::string(kModelDirectory) + "Extra.json",
        R"({"version": 5, "entities": [{"name": "Extra", "attributes": [{"name": "x", "type": "double"}]}]})");
    const auto model = ZRMStatisticsStorage::makeManagedObjectModel(*device_.platform());
    ASSERT_TRUE(model.has_value());
    EXPECT_EQ(model->version, 5);
    EXPECT_NE(model->entityNamed("Extra"), nullptr);
    EXPECT_NE(model->entityNamed("ZRMStatisticEntity"), nullptr);
}

// The letter after "Can't " is U+0441, in UTF-8 the bytes D1 81.
TEST_F(ZRMStatisticsStorageTest, StoreThatCannotBeMadeIsLoggedWithACyrillicLetter) {
    device_.disk().put("/device/data", "a file where the directory should be");
    EXPECT_FALSE(openStorage());
    ASSERT_EQ(errors().size(), 1U);
    EXPECT_THAT(errors()[0],
                StartsWith("Can't \xD1\x81reate persistent store for statistics storage: "));
    EXPECT_GT(
        errors()[0].size(),
        std::string_view("Can't \xD1\x81reate persistent store for statistics storage: ").size());
}

TEST_F(ZRMStatisticsStorageTest, CoordinatorReportsTheErrorOfAStoreThatCannotBeMade) {
    const auto model = ZRMStatisticsStorage::makeManagedObjectModel(*device_.platform());
    const auto coordinator = ZRMStatisticsStorage::makeCoordinatorWithConfiguration(
        *device_.platform(),
        ZRMStatisticsStorageConfiguration::configurationWithStorageUrl("/nowhere/store", false),
        *model);
    ASSERT_FALSE(coordinator.hasValue());
    EXPECT_FALSE(coordinator.error().localizedDescription().empty());
}

TEST_F(ZRMStatisticsStorageTest, RecordsSurviveTheProcess) {
    insert(*openContext(), "event", 1000, 2, 3);
    restart(ZRMSimulatedLoss::All);
    const auto context = openContext();
    const auto found = records(*context);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(zrm_textFromData(*found[0].jws->bytes()), "event");
    EXPECT_EQ(found[0].storeTimestamp, 1000);
    EXPECT_EQ(found[0].lastTryTimestamp, 1000);
    EXPECT_EQ(found[0].priority, 2);
    EXPECT_EQ(found[0].activeDays, 3);
}

TEST_F(ZRMStatisticsStorageTest, OlderStoreGetsTheAttributesItLacks) {
    device_.platform()->fileManager->createDirectory("/device/data");
    {
        auto database = openDatabase();
        database.exec(
            "CREATE TABLE ZRMStatisticEntity (id INTEGER PRIMARY KEY, jws BLOB, "
            "storeTimestamp REAL)");
        database.exec("INSERT INTO ZRMStatisticEntity (jws, storeTimestamp) VALUES (x'616263', 7)");
    }
    const auto context = openContext();
    const auto found = records(*context);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(zrm_textFromData(*found[0].jws->bytes()), "abc");
    EXPECT_EQ(found[0].jws->length(), 3U);
    EXPECT_EQ(found[0].storeTimestamp, 7);
    EXPECT_EQ(found[0].activeDays, 0);
    EXPECT_EQ(found[0].priority, 0);
    EXPECT_EQ(openDatabase().execAndGet("PRAGMA user_version").getInt(), 1);
}

TEST_F(ZRMStatisticsStorageTest, StoreOfANewerVersionIsRefusedAndUntouched) {
    device_.platform()->fileManager->createDirectory("/device/data");
    {
        auto database = openDatabase();
        database.exec("CREATE TABLE Future (x)");
        database.exec("PRAGMA user_version = 2");
    }
    const auto before = device_.disk().bytesOf(kStorePath);
    EXPECT_FALSE(openStorage());
    ASSERT_EQ(errors().size(), 1U);
    EXPECT_EQ(errors()[0],
              "Can't \xD1\x81reate persistent store for statistics storage: The store has version "
              "2, newer than the model's 1");
    EXPECT_EQ(device_.disk().bytesOf(kStorePath), before);
    EXPECT_THAT(device_.disk().filesBelow("/device/data"), ElementsAre(kStorePath));
}

TEST_F(ZRMStatisticsStorageTest, StoreThatAnotherConnectionHoldsIsRefusedAndKept) {
    insert(*openContext(), "event", 1000);
    restart();
    {
        auto holder = openDatabase();
        holder.exec("PRAGMA locking_mode = EXCLUSIVE");
        holder.exec("BEGIN EXCLUSIVE");
        EXPECT_FALSE(openStorage());
        ASSERT_EQ(errors().size(), 1U);
        EXPECT_THAT(errors()[0],
                    StartsWith("Can't \xD1\x81reate persistent store for statistics storage: "));
    }
    EXPECT_EQ(contents(*openContext()), std::vector<std::string>{"event"});
}

TEST_F(ZRMStatisticsStorageTest, StoreThatCannotBeMadeOnAFullDiskIsLogged) {
    device_.disk().setCapacity(device_.disk().usedBytes());
    EXPECT_FALSE(openStorage());
    ASSERT_EQ(errors().size(), 1U);
    EXPECT_THAT(errors()[0],
                StartsWith("Can't \xD1\x81reate persistent store for statistics storage: "));
}

TEST_F(ZRMStatisticsStorageTest, DamagedStoreIsNamedAfterTheTimeOfItsMoving) {
    device_.disk().put(kStorePath, std::string(5000, 'x'));
    const auto storage = openStorage();
    ASSERT_TRUE(storage);
    // 2026-01-01 00:00:00 UTC.
    const std::string moved = std::string(kStorePath) + ".damaged-1767225600";
    EXPECT_EQ(zrm_textFromData(device_.disk().bytesOf(moved)), std::string(5000, 'x'));
    EXPECT_THAT(errors(), ElementsAre("Statistics storage was damaged and is now at '" + moved +
                                      "', records carried over: 0"));
    insert(*storage->context(), "event", 1);
    EXPECT_THAT(contents(*storage->context()), ElementsAre("event"));
}

TEST_F(ZRMStatisticsStorageTest, StoreMarkedDamagedIsRepairedAndTheMarkGoes) {
    insert(*openContext(), "one", 1, 2, 3);
    insert(*openContext(), "two", 2);
    restart();
    device_.disk().put(std::string(kStorePath) + ".damaged", "");
    const auto context = openContext();
    EXPECT_THAT(contents(*context), ElementsAre("one", "two"));
    EXPECT_EQ(records(*context)[0].priority, 2);
    EXPECT_EQ(records(*context)[0].activeDays, 3);
    EXPECT_FALSE(device_.disk().holdsFile(std::string(kStorePath) + ".damaged"));
    ASSERT_EQ(errors().size(), 1U);
    EXPECT_THAT(errors()[0], ::testing::EndsWith("records carried over: 2"));
}

TEST_F(ZRMStatisticsStorageTest, DamagedStoreThatCannotBeMovedIsRefusedAndKept) {
    device_.disk().put(kStorePath, std::string(5000, 'x'));
    device_.disk().faults().add({ZRMSimulatedDiskOperation::Move});
    EXPECT_FALSE(openStorage());
    ASSERT_EQ(errors().size(), 1U);
    EXPECT_THAT(errors()[0],
                StartsWith("Can't \xD1\x81reate persistent store for statistics storage: "));
    EXPECT_EQ(zrm_textFromData(device_.disk().bytesOf(kStorePath)), std::string(5000, 'x'));
}

TEST_F(ZRMStatisticsStorageTest, StoreThatCannotBeReadNowIsKept) {
    insert(*openContext(), "event", 1);
    restart();
    device_.disk().faults().add({ZRMSimulatedDiskOperation::Read, std::string(kStorePath) + "*"});
    EXPECT_FALSE(openStorage());
    device_.disk().faults().clear();
    EXPECT_THAT(contents(*openContext()), ElementsAre("event"));
}

TEST_F(ZRMStatisticsStorageTest, KeepsEveryDamagedStoreAlsoThoseOfOneSecond) {
    for (const auto* name : {"first", "second"}) {
        device_.disk().put(kStorePath, name + std::string(5000, 'x'));
        EXPECT_TRUE(openStorage());
        restart();
    }
    const std::string moved = std::string(kStorePath) + ".damaged-176722560";
    EXPECT_THAT(zrm_textFromData(device_.disk().bytesOf(moved + "0")), StartsWith("first"));
    EXPECT_THAT(zrm_textFromData(device_.disk().bytesOf(moved + "1")), StartsWith("second"));
}

TEST_F(ZRMStatisticsStorageTest, MarkWithoutAStoreIsForgotten) {
    device_.disk().put(std::string(kStorePath) + ".damaged", "");
    EXPECT_TRUE(openStorage());
    EXPECT_FALSE(device_.disk().holdsFile(std::string(kStorePath) + ".damaged"));
    EXPECT_TRUE(errors().empty());
}

TEST_F(ZRMStatisticsStorageTest, MarkThatNamesAForeignFileLeavesItAlone) {
    insert(*openContext(), "event", 1);
    restart();
    device_.disk().put("/device/data/foreign", "foreign");
    device_.disk().put(std::string(kStorePath) + ".damaged", "/device/data/foreign");
    EXPECT_THAT(contents(*openContext()), ElementsAre("event"));
    EXPECT_EQ(zrm_textFromData(device_.disk().bytesOf("/device/data/foreign")), "foreign");
}

TEST_F(ZRMStatisticsStorageTest, NumbersThatDoNotFitBecomeTheNearestOnesInARepairToo) {
    insert(*openContext(), "event", 1);
    openDatabase().exec("UPDATE ZRMStatisticEntity SET activeDays = 70000, priority = -70000");
    restart();
    device_.disk().put(std::string(kStorePath) + ".damaged", "");
    const auto context = openContext();
    ASSERT_EQ(records(*context).size(), 1U);
    EXPECT_EQ(records(*context)[0].activeDays, 32767);
    EXPECT_EQ(records(*context)[0].priority, -32768);
}

TEST_F(ZRMStatisticsStorageTest, LogThatCannotBeMovedKeepsTheStoreForTheNextRepair) {
    auto holder = openContext();
    insert(*holder, "event", 1);
    restart(ZRMSimulatedLoss::All);
    ASSERT_TRUE(device_.disk().holdsFile(std::string(kStorePath) + "-wal"));
    device_.disk().put(std::string(kStorePath) + ".damaged", "");
    device_.disk().faults().add({ZRMSimulatedDiskOperation::Move, "*-wal"});
    EXPECT_FALSE(openStorage());
    EXPECT_TRUE(device_.disk().holdsFile(kStorePath));
    device_.disk().faults().clear();
    EXPECT_THAT(contents(*openContext()), ElementsAre("event"));
}

// Wherever the process ends, the next one carries every record over once and keeps the evidence.
TEST_F(ZRMStatisticsStorageTest, NoMomentOfAKillDuringARepairLosesARecordOrTheDamagedStore) {
    bool wasKilled = true;
    std::uint64_t number = 0;
    while (wasKilled) {
        ++number;
        SCOPED_TRACE("killed before disk operation " + std::to_string(number));
        ASSERT_LT(number, 500U);
        device_.platform()->fileManager->removeItem("/device/data");
        {
            const auto context = openContext();
            insert(*context, "one", 1);
            insert(*context, "two", 2);
        }
        restart();
        device_.disk().put(std::string(kStorePath) + ".damaged", "");
        device_.killAtDiskOperation(device_.disk().faults().operationCount() + number);
        static_cast<void>(openStorage());
        wasKilled = !device_.isProcessAlive();
        device_.disk().faults().setHook(nullptr);
        restart(ZRMSimulatedLoss::None);
        EXPECT_THAT(contents(*openContext()), ElementsAre("one", "two"));
        EXPECT_FALSE(device_.disk().holdsFile(std::string(kStorePath) + ".damaged"));
        EXPECT_TRUE(device_.disk().holdsFile(std::string(kStorePath) + ".damaged-1767225600"));
    }
    EXPECT_GT(number, 20U);
}
