#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>
#include <unistd.h>

#include "Tools/zrm-inspect/ZRMStoreInspection.h"
#include "ZRMPlatform/Linux/ZRMLinuxPlatform.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsBodyMaker.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMPersistentStoreCoordinator.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsTable.h"

namespace {

namespace fs = std::filesystem;

class ZRMStoreInspectionTest : public testing::Test {
  protected:
    ZRMStoreInspectionTest()
        : home_(fs::path(testing::TempDir()) / ("zrm-store-" + std::to_string(::getpid()))) {
        fs::remove_all(home_);
        fs::create_directories(home_);
    }
    ~ZRMStoreInspectionTest() override { fs::remove_all(home_); }

    [[nodiscard]] fs::path storeFile(const std::string& application) const {
        return home_ / "Library" / application / "ZRMStatisticsStorage/ZRMStatisticsStorage";
    }

    // The store of an application as the library makes it.
    std::shared_ptr<ZRMPersistentStoreCoordinator> openStore(const std::string& application) {
        const ZRMManagedObjectModel model{1,
                                          {{"ZRMStatisticEntity",
                                            {{"jws", ZRMAttributeType::Binary},
                                             {"storeTimestamp", ZRMAttributeType::Double},
                                             {"lastTryTimestamp", ZRMAttributeType::Double},
                                             {"activeDays", ZRMAttributeType::Integer16},
                                             {"priority", ZRMAttributeType::Integer16}}}}};
        fs::create_directories(storeFile(application).parent_path());
        const auto platform = zrm_makeLinuxPlatform({});
        auto store =
            ZRMPersistentStoreCoordinator::create(*platform, storeFile(application), model);
        EXPECT_TRUE(store.hasValue());
        return std::move(store).value();
    }

    static void insert(ZRMPersistentStoreCoordinator& store, const char* eventType, double time,
                       std::int16_t priority) {
        const auto body =
            ZRMStatisticsBodyMaker().bodyWithParameters({{eventType, ZRMDictionary()}});
        ZRMStatisticsTable(store.database()).insert({0, time, time + 1, 2, priority, 0}, *body);
    }

    fs::path home_;
};

TEST_F(ZRMStoreInspectionTest, ListsTheRecordsOldestFirstWithTheirEventTypes) {
    {
        const auto store = openStore("com.example.app");
        insert(*store, "SECOND", 2000.5, 3);
        insert(*store, "FIRST", 1000, 1);
    }
    const auto inspection = zrm_inspectStore(home_);
    EXPECT_TRUE(inspection.isGood);
    EXPECT_TRUE(inspection.report.at("error").is_null());
    const auto& records = inspection.report.at("records").as_array();
    ASSERT_EQ(records.size(), 2U);
    const auto& first = records[0].as_object();
    EXPECT_EQ(first.at("eventType").as_string(), "FIRST");
    EXPECT_EQ(first.at("storeTimestamp").as_double(), 1000);
    EXPECT_EQ(first.at("lastTryTimestamp").as_double(), 1001);
    EXPECT_EQ(first.at("activeDays").as_int64(), 2);
    EXPECT_EQ(first.at("priority").as_int64(), 1);
    EXPECT_GT(first.at("bytes").to_number<std::size_t>(), 20U);
    EXPECT_TRUE(first.at("error").is_null());
    EXPECT_EQ(records[1].as_object().at("eventType").as_string(), "SECOND");
}

TEST_F(ZRMStoreInspectionTest, ReadsAStoreThatIsInUseAndChangesNothing) {
    const auto store = openStore("com.example.app");
    insert(*store, "LOGIN", 1000, 2);
    EXPECT_EQ(zrm_inspectStore(home_).report.at("records").as_array().size(), 1U);
    insert(*store, "LOGOUT", 1001, 2);
    EXPECT_EQ(zrm_inspectStore(home_).report.at("records").as_array().size(), 2U);
    EXPECT_EQ(ZRMStatisticsTable(store->database()).totals().count, 2);
}

TEST_F(ZRMStoreInspectionTest, BringsTheStoresOfAllApplicationsTogether) {
    {
        insert(*openStore("a"), "SECOND", 2, 1);
        insert(*openStore("b"), "FIRST", 1, 1);
    }
    const auto inspection = zrm_inspectStore(home_);
    const auto& records = inspection.report.at("records").as_array();
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].as_object().at("eventType").as_string(), "FIRST");
}

TEST_F(ZRMStoreInspectionTest, AnEmptyStoreIsGood) {
    openStore("a");
    const auto inspection = zrm_inspectStore(home_);
    EXPECT_TRUE(inspection.isGood);
    EXPECT_TRUE(inspection.report.at("records").as_array().empty());
}

TEST_F(ZRMStoreInspectionTest, ShowsARecordThatHoldsNoUploadWithItsError) {
    {
        const auto store = openStore("a");
        ZRMStatisticsTable(store->database()).insert({0, 1, 1, 1, 1, 0}, {1, 2, 3});
    }
    const auto inspection = zrm_inspectStore(home_);
    EXPECT_FALSE(inspection.isGood);
    const auto& record = inspection.report.at("records").as_array().at(0).as_object();
    EXPECT_TRUE(record.at("eventType").is_null());
    EXPECT_EQ(record.at("bytes").to_number<std::size_t>(), 3U);
    EXPECT_EQ(record.at("error").as_object().at("domain").as_string(), "ZRMInspectErrorDomain");
}

TEST_F(ZRMStoreInspectionTest, ReportsWhereThereIsNoStoreOrNoStoreThatCanBeRead) {
    const auto errorOf = [](const std::string& home) {
        const auto inspection = zrm_inspectStore(home);
        EXPECT_FALSE(inspection.isGood);
        EXPECT_TRUE(inspection.report.at("records").as_array().empty());
        return std::string(inspection.report.at("error").as_object().at("domain").as_string());
    };
    EXPECT_EQ(errorOf(home_), "ZRMInspectErrorDomain");
    EXPECT_EQ(errorOf(home_ / "missing"), "NSPOSIXErrorDomain");
    fs::create_directories(storeFile("a").parent_path());
    std::ofstream(storeFile("a")) << std::string(5000, 'x');
    EXPECT_EQ(errorOf(home_), "NSSQLiteErrorDomain");
}

}  // namespace
