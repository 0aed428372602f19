#include <SQLiteCpp/Statement.h>
#include <gmock/gmock.h>

#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsContext.h"
#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMStatisticsDeviceTest.h"

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class RecordedChanges final : public ZRMStatisticsContextObserver {
  public:
    void contextDidSaveChange(const ZRMStatisticsChange& change) override {
        const auto bytes = change.data->bytes();
        texts.push_back(std::to_string(static_cast<int>(change.kind)) + ":" +
                        (bytes ? zrm_textFromData(*bytes) : "null"));
    }
    std::vector<std::string> texts;
};

class ZRMStatisticsContextTest : public ZRMStatisticsDeviceTest {
  protected:
    std::vector<ZRMStatisticEntity> find(std::string_view bytes, std::size_t limit = 0) {
        std::vector<ZRMStatisticEntity> found;
        context_->performBlockAndWait([&] {
            found = context_->executeFetchRequest({zrm_sharedData(bytes), limit}).value();
        });
        return found;
    }

    std::optional<ZRMStatisticEntity> of(const ZRMStatisticsData& data) {
        std::optional<ZRMStatisticEntity> found;
        context_->performBlockAndWait([&] { found = context_->statisticOf(data).value(); });
        return found;
    }

    void remove(const ZRMStatisticEntity& statistic) {
        context_->performBlockAndWait([&] {
            EXPECT_EQ(context_->deleteObject(statistic), std::nullopt);
            EXPECT_EQ(context_->save(), std::nullopt);
        });
    }

    std::shared_ptr<ZRMStatisticsContext> context_ = openContext();
};

}  // namespace

TEST_F(ZRMStatisticsContextTest, FetchesOldestFirstAndEqualTimesInTheOrderOfStoring) {
    insert(*context_, "late", 30);
    insert(*context_, "early", 10);
    insert(*context_, "middle one", 20);
    insert(*context_, "middle two", 20);
    EXPECT_THAT(contents(*context_), ElementsAre("early", "middle one", "middle two", "late"));
}

TEST_F(ZRMStatisticsContextTest, FindsRecordsByTheirExactBytes) {
    insert(*context_, "one-same tail", 1);
    insert(*context_, "two-same tail", 2);
    insert(*context_, "two-same tail", 3);
    EXPECT_EQ(find("one-same tail").size(), 1U);
    EXPECT_EQ(find("two-same tail").size(), 2U);
    EXPECT_EQ(find("two-same tail", 1).size(), 1U);
    EXPECT_EQ(find("two-same tail", 1)[0].storeTimestamp, 2);
    EXPECT_TRUE(find("same tail").empty());
    EXPECT_TRUE(find("two-same tail ").empty());
}

TEST_F(ZRMStatisticsContextTest, FindsBytesShorterThanTheIndexedTrailerAndNoBytesAtAll) {
    insert(*context_, "abc", 1);
    insert(*context_, "", 2);
    insert(*context_, std::string_view("\0\0", 2), 3);
    EXPECT_EQ(find("abc").size(), 1U);
    EXPECT_EQ(find("bc").size(), 0U);
    EXPECT_EQ(find("").size(), 1U);
    EXPECT_EQ(find("")[0].jws->length(), 0U);
    EXPECT_EQ(find(std::string_view("\0\0", 2)).size(), 1U);
    EXPECT_EQ(find(std::string_view("\0", 1)).size(), 0U);
}

TEST_F(ZRMStatisticsContextTest, TotalsCountRecordsAndTheirBytes) {
    insert(*context_, "12345", 1);
    insert(*context_, "123", 2);
    context_->performBlockAndWait([&] {
        EXPECT_EQ(context_->totals().value().count, 2);
        EXPECT_EQ(context_->totals().value().length, 8);
    });
}

TEST_F(ZRMStatisticsContextTest, UpdateKeepsTheBytes) {
    auto statistic = insert(*context_, "event", 1, 1, 1);
    statistic.activeDays = 2;
    statistic.lastTryTimestamp = 99;
    context_->performBlockAndWait([&] {
        EXPECT_EQ(context_->updateObject(statistic), std::nullopt);
        EXPECT_EQ(context_->save(), std::nullopt);
    });
    const auto found = records(*context_);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].activeDays, 2);
    EXPECT_EQ(found[0].lastTryTimestamp, 99);
    EXPECT_EQ(found[0].storeTimestamp, 1);
    EXPECT_EQ(zrm_textFromData(*found[0].jws->bytes()), "event");
}

TEST_F(ZRMStatisticsContextTest, ObserversLearnOfChangesInOrderOnceTheyAreSaved) {
    const auto observer = std::make_shared<RecordedChanges>();
    context_->addObserver(observer);
    context_->performBlockAndWait([&] {
        ZRMStatisticEntity statistic;
        statistic.jws = std::make_shared<ZRMStatisticsDataInMemory>(zrm_sharedData("a"));
        auto first = context_->insertObject(statistic).value();
        statistic.jws = std::make_shared<ZRMStatisticsDataInMemory>(zrm_sharedData("b"));
        EXPECT_TRUE(context_->insertObject(statistic));
        EXPECT_EQ(context_->updateObject(first), std::nullopt);
        EXPECT_EQ(context_->deleteObject(first), std::nullopt);
        EXPECT_THAT(observer->texts, IsEmpty());
        EXPECT_EQ(context_->save(), std::nullopt);
    });
    EXPECT_THAT(observer->texts, ElementsAre("1:a", "1:b", "4:a", "2:a"));
}

TEST_F(ZRMStatisticsContextTest, ChangesThatAreRolledBackLeaveNoTrace) {
    const auto observer = std::make_shared<RecordedChanges>();
    context_->addObserver(observer);
    context_->performBlockAndWait([&] {
        ZRMStatisticEntity statistic;
        statistic.jws = std::make_shared<ZRMStatisticsDataInMemory>(zrm_sharedData("a"));
        EXPECT_TRUE(context_->insertObject(statistic));
        context_->rollback();
        EXPECT_EQ(context_->save(), std::nullopt);
    });
    EXPECT_THAT(observer->texts, IsEmpty());
    EXPECT_THAT(contents(*context_), IsEmpty());
}

TEST_F(ZRMStatisticsContextTest, FetchesSeeChangesThatAreNotSavedYet) {
    context_->performBlockAndWait([&] {
        ZRMStatisticEntity statistic;
        statistic.jws = std::make_shared<ZRMStatisticsDataInMemory>(zrm_sharedData("a"));
        EXPECT_TRUE(context_->insertObject(statistic));
        EXPECT_EQ(find("a").size(), 1U);
        context_->rollback();
        EXPECT_EQ(find("a").size(), 0U);
    });
}

TEST_F(ZRMStatisticsContextTest, FailedSaveReturnsTheErrorAndChangesNothing) {
    const auto observer = std::make_shared<RecordedChanges>();
    context_->addObserver(observer);
    context_->performBlockAndWait([&] {
        ZRMStatisticEntity statistic;
        statistic.jws = std::make_shared<ZRMStatisticsDataInMemory>(zrm_sharedData("a"));
        EXPECT_TRUE(context_->insertObject(statistic));
        device_.disk().faults().add({ZRMSimulatedDiskOperation::Write, "*-wal"});
        const auto error = context_->save();
        ASSERT_TRUE(error.has_value());
        EXPECT_EQ(error->domain(), "NSSQLiteErrorDomain");
    });
    device_.disk().faults().clear();
    EXPECT_THAT(observer->texts, IsEmpty());
    EXPECT_THAT(contents(*context_), IsEmpty());
    insert(*context_, "b", 1);
    EXPECT_THAT(contents(*context_), ElementsAre("b"));
}

TEST_F(ZRMStatisticsContextTest, WhatASaveReportedSurvivesALossOfPowerRightAfterIt) {
    insert(*context_, "saved", 1);
    context_.reset();
    restart(ZRMSimulatedLoss::All);
    EXPECT_THAT(contents(*openContext()), ElementsAre("saved"));
}

TEST_F(ZRMStatisticsContextTest, BytesThatWereLetGoAreReadAgainFromTheStore) {
    const auto statistic = insert(*context_, "event", 1);
    statistic.jws->turnIntoFault();
    EXPECT_EQ(zrm_textFromData(*statistic.jws->bytes()), "event");
    EXPECT_EQ(statistic.jws->length(), 5U);
}

TEST_F(ZRMStatisticsContextTest, OnlyTheLastInsertedRecordsKeepTheirBytesInMemory) {
    std::vector<std::weak_ptr<const ZRMData>> bytes;
    std::vector<ZRMStatisticEntity> inserted;
    for (int number = 0; number < 100; ++number) {
        ZRMStatisticEntity statistic;
        auto shared = zrm_sharedData(std::to_string(number));
        bytes.push_back(shared);
        statistic.jws = std::make_shared<ZRMStatisticsDataInMemory>(std::move(shared));
        context_->performBlockAndWait([&] {
            inserted.push_back(context_->insertObject(statistic).value());
            EXPECT_EQ(context_->save(), std::nullopt);
        });
    }
    EXPECT_TRUE(bytes.front().expired());
    EXPECT_FALSE(bytes.back().expired());
    EXPECT_EQ(zrm_textFromData(*inserted.front().jws->bytes()), "0");
}

TEST_F(ZRMStatisticsContextTest, BytesOfADeletedRecordStayReadableForWhoHoldsThem) {
    const auto statistic = insert(*context_, "event", 1);
    statistic.jws->turnIntoFault();
    remove(statistic);
    statistic.jws->turnIntoFault();
    ASSERT_TRUE(statistic.jws->bytes());
    EXPECT_EQ(zrm_textFromData(*statistic.jws->bytes()), "event");
}

TEST_F(ZRMStatisticsContextTest, RecordThatReusesANumberHasItsOwnBytes) {
    const auto first = insert(*context_, "first", 1);
    remove(first);
    const auto second = insert(*context_, "second", 2);
    EXPECT_EQ(zrm_textFromData(*first.jws->bytes()), "first");
    EXPECT_EQ(zrm_textFromData(*second.jws->bytes()), "second");
    EXPECT_EQ(records(*context_)[0].jws, second.jws);
}

TEST_F(ZRMStatisticsContextTest, ThereIsOneDataObjectARecord) {
    const auto statistic = insert(*context_, "event", 1);
    EXPECT_EQ(records(*context_)[0].jws, statistic.jws);
    EXPECT_EQ(find("event")[0].jws, statistic.jws);
}

TEST_F(ZRMStatisticsContextTest, StoredBytesKeepTheIdentityOfThoseThatWereGiven) {
    const auto bytes = zrm_sharedData("event");
    context_->performBlockAndWait([&] {
        ZRMStatisticEntity statistic;
        statistic.jws = std::make_shared<ZRMStatisticsDataInMemory>(bytes);
        EXPECT_EQ(context_->insertObject(statistic).value().jws->identity(), bytes.get());
        context_->rollback();
    });
}

TEST_F(ZRMStatisticsContextTest, DataOfTheStoreFindsItsRecord) {
    insert(*context_, "event", 1);
    const auto second = insert(*context_, "event", 2);
    const auto found = of(*second.jws);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->objectIdentifier, second.objectIdentifier);
    EXPECT_EQ(found->storeTimestamp, 2);
    EXPECT_EQ(found->jws, second.jws);
    EXPECT_FALSE(of(ZRMStatisticsDataInMemory(zrm_sharedData("event"))));
}

TEST_F(ZRMStatisticsContextTest, DataWhoseRecordIsGoneDoesNotFindTheOneThatGotItsNumber) {
    const auto gone = insert(*context_, "gone", 1);
    remove(gone);
    EXPECT_FALSE(of(*gone.jws));
    const auto next = insert(*context_, "next", 2);
    ASSERT_EQ(next.objectIdentifier, gone.objectIdentifier);
    EXPECT_FALSE(of(*gone.jws));
    EXPECT_TRUE(of(*next.jws));
}

TEST_F(ZRMStatisticsContextTest, BytesOfADeletedRecordAreKeptUnlessTheirUploadWasAnswered) {
    const auto waiting = insert(*context_, "waiting", 1);
    const auto answered = insert(*context_, "answered", 2);
    answered.jws->endUpload();
    for (const auto& statistic : {waiting, answered}) {
        statistic.jws->turnIntoFault();
        remove(statistic);
    }
    ASSERT_TRUE(waiting.jws->bytes());
    EXPECT_EQ(zrm_textFromData(*waiting.jws->bytes()), "waiting");
    EXPECT_EQ(answered.jws->bytes(), nullptr);
}

TEST_F(ZRMStatisticsContextTest, BytesAreNullOnceTheContextIsGone) {
    const auto statistic = insert(*context_, "event", 1);
    statistic.jws->turnIntoFault();
    context_.reset();
    EXPECT_EQ(statistic.jws->bytes(), nullptr);
}

TEST_F(ZRMStatisticsContextTest, NumbersThatDoNotFitBecomeTheNearestOnes) {
    context_.reset();
    {
        auto database = openDatabase();
        database.exec(
            "INSERT INTO ZRMStatisticEntity (storeTimestamp, lastTryTimestamp, "
            "activeDays, priority, jwsLength, jws) VALUES (1, 1, 70000, -70000, 3, "
            "x'616263'), (2, 'text', NULL, 'x', -5, NULL)");
    }
    context_ = openContext();
    const auto found = records(*context_);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].activeDays, 32767);
    EXPECT_EQ(found[0].priority, -32768);
    EXPECT_EQ(found[1].lastTryTimestamp, 0);
    EXPECT_EQ(found[1].activeDays, 0);
    EXPECT_EQ(found[1].jws->length(), 0U);
    ASSERT_TRUE(found[1].jws->bytes());
    EXPECT_TRUE(found[1].jws->bytes()->empty());
}

TEST_F(ZRMStatisticsContextTest, BlocksNest) {
    bool ran = false;
    context_->performBlockAndWait([&] { context_->performBlockAndWait([&] { ran = true; }); });
    EXPECT_TRUE(ran);
}

// The queue must stay fast however long it grows, so no statement may walk the whole table.
TEST_F(ZRMStatisticsContextTest, StatementsUseTheIndexes) {
    context_.reset();
    auto database = openDatabase();
    const auto plan = [&](const std::string& sql) {
        SQLite::Statement explain(database, "EXPLAIN QUERY PLAN " + sql);
        std::string text;
        while (explain.executeStep()) {
            text += explain.getColumn(3).getString() + "\n";
        }
        return text;
    };
    EXPECT_THAT(plan(ZRMStatisticsTable::kSelectWithBytes),
                HasSubstr("USING INDEX ZRMStatisticEntity_trailer"));
    EXPECT_THAT(plan(ZRMStatisticsTable::kSelectAll),
                HasSubstr("USING COVERING INDEX ZRMStatisticEntity_queue"));
    EXPECT_THAT(plan(ZRMStatisticsTable::kSelectAll), ::testing::Not(HasSubstr("TEMP B-TREE")));
    EXPECT_THAT(plan(ZRMStatisticsTable::kSelectTotals),
                HasSubstr("USING COVERING INDEX ZRMStatisticEntity_queue"));
}

TEST(ZRMStatisticFetchRequest, DescribesItselfForTheLog) {
    EXPECT_EQ(ZRMStatisticEntity::fetchRequest().description(),
              "(entity: ZRMStatisticEntity; predicate: (null); limit: 0)");
    EXPECT_EQ((ZRMStatisticFetchRequest{zrm_sharedData("abc"), 1}.description()),
              "(entity: ZRMStatisticEntity; predicate: jws == <3 bytes>; limit: 1)");
}
