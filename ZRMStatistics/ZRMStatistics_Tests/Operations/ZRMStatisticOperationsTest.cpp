#include <SQLiteCpp/Database.h>
#include <gmock/gmock.h>

#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMCreateStatisticOperation.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMDeleteStatisticOperation.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMUpdateStatisticOperation.h"
#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMStatisticsDeviceTest.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::StartsWith;

// Not UTF-8, as compressed bytes are.
constexpr std::string_view kBinary("\x1f\x8b\x08\0event", 9);

class ZRMStatisticOperationsTest : public ZRMStatisticsDeviceTest {
  protected:
    std::optional<ZRMError> create(std::string_view bytes, std::int16_t priority = 1,
                                   std::shared_ptr<ZRMServerTimeProvider> time = nullptr) {
        return run(std::make_shared<ZRMCreateStatisticOperation>(
            zrm_sharedData(bytes), context_, time ? time : unknownServerTime(), priority));
    }
    std::optional<ZRMError> update(std::string_view bytes,
                                   std::shared_ptr<ZRMServerTimeProvider> time = nullptr) {
        return run(std::make_shared<ZRMUpdateStatisticOperation>(
            inMemory(bytes), context_, time ? time : unknownServerTime()));
    }
    std::optional<ZRMError> remove(std::string_view bytes) {
        return run(std::make_shared<ZRMDeleteStatisticOperation>(inMemory(bytes), context_));
    }

    static std::shared_ptr<ZRMStatisticsData> inMemory(std::string_view bytes) {
        return std::make_shared<ZRMStatisticsDataInMemory>(zrm_sharedData(bytes));
    }
    static std::optional<ZRMError> run(const std::shared_ptr<ZRMErrorProneOperation>& operation) {
        operation->start();
        EXPECT_TRUE(operation->isFinished());
        return operation->error();
    }

    void failWrites() { device_.disk().faults().add({ZRMSimulatedDiskOperation::Write, "*-wal"}); }
    // The table goes behind the context's back, so that every statement on it fails.
    void dropTable() {
        auto database = openDatabase();
        database.exec("DROP TABLE ZRMStatisticEntity");
    }

    std::shared_ptr<ZRMStatisticsContext> context_ = openContext();
};

}  // namespace

TEST_F(ZRMStatisticOperationsTest, CreateStoresTheBytesWithTheLocalTimeAndDayOne) {
    device_.advanceBy(0.25);
    EXPECT_EQ(create(kBinary, 2), std::nullopt);
    const auto found = records(*context_);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(*found[0].jws->bytes(), zrm_dataFromText(kBinary));
    EXPECT_EQ(found[0].storeTimestamp, device_.now().secondsSince1970);
    EXPECT_EQ(found[0].lastTryTimestamp, device_.now().secondsSince1970);
    EXPECT_EQ(found[0].activeDays, 1);
    EXPECT_EQ(found[0].priority, 2);
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(ZRMStatisticOperationsTest, CreateTakesTheServersTimeInWholeSecondsOnceItIsKnown) {
    const auto time = knownServerTime();
    device_.advanceBy(0.123);
    EXPECT_EQ(create(kBinary, 1, time), std::nullopt);
    const auto found = records(*context_);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].storeTimestamp, 1700000000.0);
    EXPECT_EQ(found[0].lastTryTimestamp, 1700000000.0);
}

TEST_F(ZRMStatisticOperationsTest, CreateKeepsPrioritiesThatMeanNothing) {
    create("a", 0);
    create("b", -32768);
    create("c", 32767);
    const auto found = records(*context_);
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found[0].priority, 0);
    EXPECT_EQ(found[1].priority, -32768);
    EXPECT_EQ(found[2].priority, 32767);
}

TEST_F(ZRMStatisticOperationsTest, CreateThatCannotBeSavedLogsAndEndsWithTheError) {
    failWrites();
    const auto error = create(kBinary);
    ASSERT_TRUE(error.has_value());
    EXPECT_THAT(errors(),
                ElementsAre("Can't add statistic to store: " + error->localizedDescription()));
    device_.disk().faults().clear();
    EXPECT_THAT(records(*context_), IsEmpty());
}

TEST_F(ZRMStatisticOperationsTest, CreateOnAFullDiskLogsAndTheNextOneWorks) {
    device_.disk().setCapacity(device_.disk().usedBytes());
    EXPECT_TRUE(create(kBinary).has_value());
    device_.disk().setCapacity(std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(create("second"), std::nullopt);
    EXPECT_THAT(contents(*context_), ElementsAre("second"));
}

TEST_F(ZRMStatisticOperationsTest, CreateWhoseInsertFailsLogsAndEndsWithTheError) {
    dropTable();
    EXPECT_TRUE(create(kBinary).has_value());
    ASSERT_EQ(errors().size(), 1U);
    EXPECT_THAT(errors()[0], StartsWith("Can't add statistic to store: "));
}

TEST_F(ZRMStatisticOperationsTest, SameBytesTwiceAreTwoRecordsOfWhichUpdateTouchesOne) {
    create("same");
    create("same");
    device_.advanceBy(86400.5);
    EXPECT_EQ(update("same"), std::nullopt);
    const auto found = records(*context_);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].activeDays + found[1].activeDays, 3);
}

TEST_F(ZRMStatisticOperationsTest, SameBytesTwiceAreTwoRecordsOfWhichDeleteTakesOne) {
    create("same");
    create("same");
    EXPECT_EQ(remove("same"), std::nullopt);
    EXPECT_THAT(contents(*context_), ElementsAre("same"));
    EXPECT_EQ(remove("same"), std::nullopt);
    EXPECT_THAT(contents(*context_), IsEmpty());
}

TEST_F(ZRMStatisticOperationsTest, UpdateExactlyADayLaterCountsNoNewDay) {
    create("event");
    const auto stored = device_.now().secondsSince1970;
    device_.advanceBy(86400);
    EXPECT_EQ(update("event"), std::nullopt);
    const auto found = records(*context_);
    EXPECT_EQ(found[0].activeDays, 1);
    EXPECT_EQ(found[0].lastTryTimestamp, stored);
}

TEST_F(ZRMStatisticOperationsTest, UpdateHalfASecondMoreThanADayLaterCountsANewDay) {
    create("event");
    const auto stored = device_.now().secondsSince1970;
    device_.advanceBy(86400.5);
    EXPECT_EQ(update("event"), std::nullopt);
    const auto found = records(*context_);
    EXPECT_EQ(found[0].activeDays, 2);
    EXPECT_EQ(found[0].lastTryTimestamp, device_.now().secondsSince1970);
    EXPECT_EQ(found[0].storeTimestamp, stored);
}

TEST_F(ZRMStatisticOperationsTest, UpdateCountsDaysByTheServersTime) {
    const auto time = knownServerTime();
    create("event", 1, time);
    device_.advanceBy(86401);
    EXPECT_EQ(update("event", time), std::nullopt);
    EXPECT_EQ(records(*context_)[0].lastTryTimestamp, 1700086401.0);
    EXPECT_EQ(records(*context_)[0].activeDays, 2);
}

TEST_F(ZRMStatisticOperationsTest, SeveralUpdatesWithinADayCountOnce) {
    create("event");
    device_.advanceBy(86401);
    update("event");
    device_.advanceBy(3600);
    update("event");
    EXPECT_EQ(records(*context_)[0].activeDays, 2);
}

TEST_F(ZRMStatisticOperationsTest, UpdateOfBytesThatAreNotStoredLogsThemAndFinishes) {
    create("event");
    EXPECT_EQ(update("other"), std::nullopt);
    EXPECT_THAT(errors(), ElementsAre("No statistic found for jwsData: other"));
}

TEST_F(ZRMStatisticOperationsTest, BytesThatAreNoTextAreLoggedAsNull) {
    EXPECT_EQ(update(kBinary), std::nullopt);
    EXPECT_THAT(errors(), ElementsAre("No statistic found for jwsData: (null)"));
}

TEST_F(ZRMStatisticOperationsTest, UpdateThatCannotFetchLogsTheRequestAndEndsWithTheError) {
    create("event");
    dropTable();
    const auto error = update("event");
    ASSERT_TRUE(error.has_value());
    EXPECT_THAT(errors(),
                ElementsAre("Can't execute fetch request '(entity: ZRMStatisticEntity; predicate: "
                            "jws == <5 bytes>; limit: 1)': " +
                            error->localizedDescription()));
}

TEST_F(ZRMStatisticOperationsTest, UpdateThatCannotBeSavedLogsAndEndsWithTheError) {
    create("event");
    device_.advanceBy(86401);
    failWrites();
    const auto error = update("event");
    ASSERT_TRUE(error.has_value());
    EXPECT_THAT(errors(), ElementsAre("Can't update statistic: " + error->localizedDescription()));
    device_.disk().faults().clear();
    EXPECT_EQ(records(*context_)[0].activeDays, 1);
}

TEST_F(ZRMStatisticOperationsTest, DeleteTakesTheRecordAway) {
    create("event");
    create("other");
    EXPECT_EQ(remove("event"), std::nullopt);
    EXPECT_THAT(contents(*context_), ElementsAre("other"));
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(ZRMStatisticOperationsTest, DeleteOfBytesThatAreNotStoredLogsThemAndChangesNothing) {
    create("event");
    EXPECT_EQ(remove("other"), std::nullopt);
    EXPECT_THAT(errors(), ElementsAre("No statistic found for jwsData: other"));
    EXPECT_THAT(contents(*context_), ElementsAre("event"));
}

TEST_F(ZRMStatisticOperationsTest, DeleteThatCannotFetchLogsTheRequestAndEndsWithTheError) {
    create("event");
    dropTable();
    EXPECT_TRUE(remove("event").has_value());
    ASSERT_EQ(errors().size(), 1U);
    EXPECT_THAT(errors()[0], StartsWith("Can't execute fetch request '(entity: "));
}

TEST_F(ZRMStatisticOperationsTest, DeleteThatCannotBeSavedLogsAndEndsWithTheError) {
    create("event");
    failWrites();
    const auto error = remove("event");
    ASSERT_TRUE(error.has_value());
    EXPECT_THAT(errors(), ElementsAre("Can't delete statistic with jwsData: event, Error: " +
                                      error->localizedDescription()));
    device_.disk().faults().clear();
    EXPECT_THAT(contents(*context_), ElementsAre("event"));
}

TEST_F(ZRMStatisticOperationsTest, CancelledOperationChangesNothing) {
    const auto operation = std::make_shared<ZRMCreateStatisticOperation>(
        zrm_sharedData("event"), context_, unknownServerTime(), std::int16_t{1});
    operation->cancel();
    operation->start();
    EXPECT_TRUE(operation->isFinished());
    EXPECT_THAT(records(*context_), IsEmpty());
}

TEST_F(ZRMStatisticOperationsTest, OperationTellsItsBytesContextAndPriority) {
    const auto bytes = zrm_sharedData("event");
    const ZRMCreateStatisticOperation operation(bytes, context_, unknownServerTime(), 3);
    EXPECT_EQ(operation.jwsData()->bytes(), bytes);
    EXPECT_EQ(operation.context(), context_);
    EXPECT_EQ(operation.priority(), 3);
}
