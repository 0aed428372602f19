#include <gmock/gmock.h>

#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMStatisticsServiceFixture.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ZRMStatisticsServiceStartTest : public ZRMStatisticsServiceFixture {};

}  // namespace

TEST_F(ZRMStatisticsServiceStartTest, StartSendsWhatIsStoredByPriorityAndAge) {
    putRecord("third", 10, 3);
    putRecord("second old", 30, 2);
    putRecord("first", 5, 1);
    putRecord("second new", 20, 2);
    start();
    device_.runUntilIdle();
    EXPECT_THAT(sender_->texts(), ElementsAre("first", "second old", "second new", "third"));
}

TEST_F(ZRMStatisticsServiceStartTest, WhatIsStoredIsPendingAtOnceAndSentOnTheQueue) {
    putRecord("stored", 10, 3);
    start();
    EXPECT_EQ(service_->pendingEventCount(), 1U);
    EXPECT_THAT(sender_->sent(), IsEmpty());
    device_.runUntilIdle();
    EXPECT_THAT(sender_->texts(), ElementsAre("stored"));
}

TEST_F(ZRMStatisticsServiceStartTest, WhatIsStoredIsSentBeforeAnEventSentRightAfterTheStart) {
    putRecord("stored", 10, 3);
    start();
    sendAndStore("event", 1);
    ASSERT_EQ(sender_->sent().size(), 2U);
    EXPECT_EQ(sender_->texts().front(), "stored");
    EXPECT_EQ(sender_->names().back(), "event");
}

TEST_F(ZRMStatisticsServiceStartTest, AStopBeforeTheQueueRunsLeavesStoredRecordsToTheNextStart) {
    putRecord("stored", 10);
    start();
    service_->stop();
    device_.runUntilIdle();
    EXPECT_THAT(sender_->sent(), IsEmpty());
    service_->start();
    device_.runUntilIdle();
    EXPECT_THAT(sender_->texts(), ElementsAre("stored"));
}

TEST_F(ZRMStatisticsServiceStartTest,
       StartDeletesWhatIsExpiredWithoutSendingItAndTheLogSaysHowMany) {
    putRecord("31 days", 31 * kDay);
    putRecord("four active days", 10, 1, 4);
    putRecord("priority 0", 10, 0);
    putRecord("good", 30 * kDay);
    start();
    device_.runUntilIdle();
    EXPECT_THAT(sender_->texts(), ElementsAre("good"));
    EXPECT_THAT(contents(*storage_->context()), ElementsAre("good"));
    EXPECT_THAT(errors(), ElementsAre("Statistics deleted because they expired: 3"));
}

TEST_F(ZRMStatisticsServiceStartTest, StartTellsAgeByTheServersTimeOnceItIsKnown) {
    time_ = knownServerTime();
    insert(*openContext(), "new for the server", 1700000000.0 - 30 * kDay);
    insert(*openContext(), "old for the server", 1700000000.0 - 30 * kDay - 1);
    start();
    device_.runUntilIdle();
    EXPECT_THAT(sender_->texts(), ElementsAre("new for the server"));
}

TEST_F(ZRMStatisticsServiceStartTest, TheServersTimeThatComesAfterTheStartExpiresNothing) {
    putRecord("good", 10);
    start();
    time_->setTime("Thu, 01 Jan 2099 00:00:00 GMT");
    device_.runUntilIdle();
    EXPECT_THAT(sender_->texts(), ElementsAre("good"));
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(ZRMStatisticsServiceStartTest, StartReadsTheStoreOnTheQueueAndNotOnItsCaller) {
    makeService();
    openDatabase().exec("DROP TABLE ZRMStatisticEntity");
    service_->start();
    EXPECT_THAT(errors(), IsEmpty());
    device_.runUntilIdle();
    ASSERT_EQ(errors().size(), 1U);
    EXPECT_THAT(errors()[0],
                ::testing::StartsWith("Can't fetch statistics entites from storage: "));
}

TEST_F(ZRMStatisticsServiceStartTest, RestartSendsARecordStoredJustBeforeItOnce) {
    start();
    send("event");
    service_->stop();
    service_->start();
    device_.runUntilIdle();
    EXPECT_EQ(sender_->sent().size(), 1U);
}

TEST_F(ZRMStatisticsServiceStartTest, RestartAfterARecordWasStoredSendsItOnce) {
    start();
    send("event");
    while (storedCount() == 0) {
        ASSERT_TRUE(device_.runOneTask());
    }
    service_->stop();
    service_->start();
    device_.runUntilIdle();
    EXPECT_EQ(sender_->sent().size(), 1U);
}

TEST_F(ZRMStatisticsServiceStartTest, EventsOfASecondStartFollowThoseOfTheFirst) {
    start();
    send("one");
    service_->stop();
    service_->start();
    send("two");
    device_.runUntilIdle();
    EXPECT_THAT(sender_->names(), ElementsAre("one", "two"));
}
