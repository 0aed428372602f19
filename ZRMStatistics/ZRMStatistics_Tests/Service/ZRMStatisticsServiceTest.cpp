#include <limits>
#include <span>

#include <gmock/gmock.h>

#include "ZRMStatistics/ZRMStatistics_Tests/Support/ZRMStatisticsServiceFixture.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;

class ZRMStatisticsServiceTest : public ZRMStatisticsServiceFixture {};

}  // namespace

TEST_F(ZRMStatisticsServiceTest, QueueIsNamedAfterTheClassAndRunsOneOperationAtATime) {
    makeService();
    EXPECT_EQ(service_->queue().name(), "ZRMStatisticsServiceImpl.queue");
    EXPECT_EQ(service_->queue().maxConcurrentOperationCount(), 1);
    EXPECT_EQ(service_->maxStorageSize(), 10485760);
}

TEST_F(ZRMStatisticsServiceTest, StoresTheEventAndThenSendsIt) {
    start();
    sendAndStore("event", 2);
    const auto found = records(*storage_->context());
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].priority, 2);
    EXPECT_EQ(sender_->names(), std::vector<std::string>{"event"});
    EXPECT_EQ(*sender_->sent()[0]->bytes(), *found[0].jws->bytes());
}

TEST_F(ZRMStatisticsServiceTest, SendsNothingBeforeItIsStored) {
    start();
    send("event");
    EXPECT_THAT(sender_->sent(), IsEmpty());
    device_.disk().faults().add({ZRMSimulatedDiskOperation::Write, "*-wal"});
    device_.runUntilIdle();
    EXPECT_THAT(sender_->sent(), IsEmpty());
    ASSERT_EQ(errors().size(), 1U);
    EXPECT_THAT(errors()[0], ::testing::StartsWith("Can't add statistic to store: "));
}

TEST_F(ZRMStatisticsServiceTest, LogsTheStagesOfAnEvent) {
    start();
    sendAndStore("event");
    const auto length = std::to_string(sender_->sent()[0]->length());
    sender_->answer(0);
    device_.runUntilIdle();
    std::vector<std::string> stages;
    for (const auto& text : log_->verboses()) {
        if (text.find(" event with content: ") != std::string::npos) {
            stages.push_back(text);
        }
    }
    ASSERT_EQ(stages.size(), 4U);
    EXPECT_THAT(stages[0],
                MatchesRegex("Send event with content: 0x[0-9a-f]+ \\(" + length + " bytes\\)"));
    EXPECT_THAT(stages[1], MatchesRegex("Did save event with content: 0x[0-9a-f]+ \\(" + length +
                                        " bytes\\)"));
    EXPECT_THAT(stages[2], MatchesRegex("Did send event with content: 0x[0-9a-f]+ \\(" + length +
                                        " bytes\\)"));
    EXPECT_THAT(stages[3], MatchesRegex("Did delete event with content: 0x[0-9a-f]+ \\(" + length +
                                        " bytes\\)"));
    // One event keeps one identity through the log.
    EXPECT_EQ(stages[0].substr(4), stages[1].substr(8));
    EXPECT_EQ(stages[0].substr(4), stages[3].substr(10));
}

TEST_F(ZRMStatisticsServiceTest, EventBeforeStartIsDroppedWithAConsoleLine) {
    makeService();
    send("event");
    device_.runUntilIdle();
    EXPECT_EQ(device_.console().text(), "ZRMStatisticsService not started\n");
    EXPECT_EQ(storedCount(), 0U);
    EXPECT_THAT(sender_->sent(), IsEmpty());
}

TEST_F(ZRMStatisticsServiceTest, EventAfterStopIsDroppedWithAConsoleLine) {
    start();
    service_->stop();
    send("event");
    device_.runUntilIdle();
    EXPECT_EQ(device_.console().text(), "ZRMStatisticsService not started\n");
    EXPECT_EQ(storedCount(), 0U);
}

TEST_F(ZRMStatisticsServiceTest, StartingTwiceOnlyLogs) {
    putRecord("event", 10);
    start();
    service_->start();
    device_.runUntilIdle();
    EXPECT_EQ(countVerbose("Service already started"), 1U);
    EXPECT_EQ(sender_->sent().size(), 1U);
    EXPECT_EQ(device_.console().text(), "");
}

TEST_F(ZRMStatisticsServiceTest, StoppingTwiceOnlyLogs) {
    start();
    service_->stop();
    EXPECT_EQ(countVerbose("Service already stopped"), 0U);
    EXPECT_EQ(service_->dataSource(), nullptr);
    service_->stop();
    EXPECT_EQ(countVerbose("Service already stopped"), 1U);
}

TEST_F(ZRMStatisticsServiceTest, StopLeavesTheSendersAnswersUnheard) {
    start();
    sendAndStore("event");
    service_->stop();
    sender_->answer(0);
    device_.runUntilIdle();
    EXPECT_EQ(storedCount(), 1U);
}

TEST_F(ZRMStatisticsServiceTest, DestructionStops) {
    start();
    service_.reset();
    EXPECT_EQ(sender_->observerCount(), 0U);
}

TEST_F(ZRMStatisticsServiceTest, EventWithoutAJsonFormIsLoggedAndNeitherStoredNorSent) {
    start();
    service_->send(ZRMTestEvent(ZRMDictionary{{"x", std::numeric_limits<double>::quiet_NaN()}}), 1);
    device_.runUntilIdle();
    ASSERT_EQ(errors().size(), 1U);
    EXPECT_THAT(errors()[0], ::testing::StartsWith("Invalid JSON object: "));
    EXPECT_EQ(storedCount(), 0U);
    EXPECT_THAT(sender_->sent(), IsEmpty());
    EXPECT_EQ(service_->pendingEventCount(), 0U);
}

TEST_F(ZRMStatisticsServiceTest, AnsweredEventIsDeleted) {
    start();
    sendAndStore("event");
    sendAndStore("other");
    sender_->answer(0);
    device_.runUntilIdle();
    EXPECT_EQ(storedCount(), 1U);
    EXPECT_EQ(service_->dataSource()->getStorageSize(),
              static_cast<std::int64_t>(sender_->sent()[0]->length()));
}

TEST_F(ZRMStatisticsServiceTest, FailedEventStaysAndIsNotSentAgainInThisRun) {
    start();
    sendAndStore("event");
    sender_->fail(0, ZRMError::withDescription("D", 1, "no luck"));
    device_.runUntilIdle();
    EXPECT_EQ(storedCount(), 1U);
    EXPECT_THAT(sender_->sent(), IsEmpty());
    ASSERT_EQ(errors().size(), 1U);
    EXPECT_THAT(errors()[0],
                MatchesRegex("Did fail to send event with content: 0x[0-9a-f]+ error: no luck"));
}

TEST_F(ZRMStatisticsServiceTest, FailureMoreThanADayAfterTheLastCountedOneCountsADay) {
    start();
    sendAndStore("event");
    device_.advanceBy(kDay + 1);
    sender_->fail(0, ZRMError("D", 1));
    device_.runUntilIdle();
    EXPECT_EQ(records(*storage_->context())[0].activeDays, 2);
}

TEST_F(ZRMStatisticsServiceTest, QueueThatIsExactlyFullIsNotEmptied) {
    makeService(5);
    insert(*storage_->context(), "12345", device_.now().secondsSince1970);
    service_->start();
    sendAndStore("event");
    EXPECT_EQ(storedCount(), 2U);
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(ZRMStatisticsServiceTest, QueueOneByteTooLargeIsEmptiedBeforeTheNewEventEnters) {
    makeService(5);
    insert(*storage_->context(), "123", device_.now().secondsSince1970 - 1);
    insert(*storage_->context(), "456", device_.now().secondsSince1970);
    service_->start();
    sendAndStore("event");
    EXPECT_THAT(errors(), ElementsAre("Storage is full, deleting all statistics"));
    ASSERT_EQ(storedCount(), 1U);
    EXPECT_EQ(sender_->names().back(), "event");
    EXPECT_EQ(countVerbose("Did delete event"), 2U);
}

TEST_F(ZRMStatisticsServiceTest, EventsSentDuringAnEmptyingAskForNoSecondOne) {
    makeService(5);
    insert(*storage_->context(), "123456", device_.now().secondsSince1970);
    service_->start();
    send("one");
    send("two");
    device_.runUntilIdle();
    EXPECT_THAT(errors(), ElementsAre("Storage is full, deleting all statistics"));
    EXPECT_EQ(storedCount(), 2U);
    sendAndStore("three");
    EXPECT_EQ(errors().size(), 2U);
    EXPECT_EQ(storedCount(), 1U);
}

TEST_F(ZRMStatisticsServiceTest, EmptiedRecordsThatWaitForTheirUploadAreStillSent) {
    makeService(5);
    insert(*storage_->context(), "123456", device_.now().secondsSince1970);
    service_->start();
    sendAndStore("event");
    ASSERT_EQ(sender_->sent().size(), 2U);
    ASSERT_TRUE(sender_->sent()[0]->bytes());
    EXPECT_EQ(zrm_textFromData(*sender_->sent()[0]->bytes()), "123456");
}

TEST_F(ZRMStatisticsServiceTest, WithoutAStorageEventsGoStraightToTheSender) {
    makeServiceWithoutStorage();
    service_->start();
    send("event");
    send("other");
    EXPECT_THAT(sender_->names(), ElementsAre("event", "other"));
    EXPECT_EQ(service_->dataSource(), nullptr);
    sender_->answer(0);
    sender_->fail(0, ZRMError("D", 1));
    device_.runUntilIdle();
    EXPECT_EQ(errors().size(), 1U);
}

TEST_F(ZRMStatisticsServiceTest, WithoutAStorageItStartsAndStopsOnceToo) {
    makeServiceWithoutStorage();
    service_->start();
    service_->start();
    EXPECT_EQ(countVerbose("Service already started"), 1U);
    service_->stop();
    EXPECT_EQ(countVerbose("Service already stopped"), 0U);
    service_->stop();
    EXPECT_EQ(countVerbose("Service already stopped"), 1U);
}

TEST_F(ZRMStatisticsServiceTest, EventsSentInOneGoShareASave) {
    start();
    std::uint64_t synchronizations = 0;
    device_.disk().faults().setHook(
        [&](std::uint64_t, ZRMSimulatedDiskOperation operation, const std::string&) {
            synchronizations += operation == ZRMSimulatedDiskOperation::Synchronize ? 1 : 0;
        });
    sendAndStore("alone");
    const auto alone = synchronizations;
    synchronizations = 0;
    for (int number = 0; number < 50; ++number) {
        send(std::to_string(number));
    }
    device_.runUntilIdle();
    device_.disk().faults().setHook({});
    EXPECT_EQ(storedCount(), 51U);
    EXPECT_LE(synchronizations, alone);
    std::vector<std::string> expected = {"alone"};
    for (int number = 0; number < 50; ++number) {
        expected.push_back(std::to_string(number));
    }
    EXPECT_EQ(sender_->names(), expected);
}

TEST_F(ZRMStatisticsServiceTest, ReporterEncodesNothingUntilManyEventsWait) {
    int encoded = 0;
    storage_ = openStorage();
    auto steps = ZRMStatisticsBodyMaker::Steps::standard();
    steps.gzip = [&encoded, gzip = steps.gzip](std::span<const std::uint8_t> data) {
        ++encoded;
        return gzip(data);
    };
    service_ = std::make_shared<ZRMStatisticsServiceImpl>(device_.platform(), storage_, sender_,
                                                          time_, kZRMStatisticsMaxStorageSize,
                                                          ZRMStatisticsBodyMaker(steps));
    service_->start();
    for (std::size_t number = 0; number < ZRMStatisticsPipeline::kMaxWaiting; ++number) {
        send(std::to_string(number));
    }
    EXPECT_EQ(encoded, 0);
    send("one more");
    EXPECT_EQ(encoded, 1);
    device_.runUntilIdle();
    EXPECT_EQ(storedCount(), ZRMStatisticsPipeline::kMaxWaiting + 1);
    EXPECT_EQ(sender_->names().back(), "one more");
}

TEST_F(ZRMStatisticsServiceTest, ParametersAreThoseOfTheCallUnlessTheEventIsHandedOver) {
    class ChangingEvent final : public ZRMStatisticsEvent {
      public:
        [[nodiscard]] ZRMDictionary parameters() const override {
            return {{"TEST", {{"name", name}}}};
        }
        std::string name = "at the call";
    };
    start();
    const auto event = std::make_shared<ChangingEvent>();
    service_->send(*event, 1);
    service_->send(event, 1);
    event->name = "later";
    device_.runUntilIdle();
    EXPECT_THAT(sender_->names(), ElementsAre("at the call", "later"));
}

TEST_F(ZRMStatisticsServiceTest, EventHandedOverIsLetGoOnceItIsEncoded) {
    start();
    auto event = std::make_shared<const ZRMTestEvent>("event");
    const std::weak_ptr weak = event;
    service_->send(std::move(event), 1);
    EXPECT_FALSE(weak.expired());
    device_.runUntilIdle();
    EXPECT_TRUE(weak.expired());
    EXPECT_THAT(sender_->names(), ElementsAre("event"));
}

TEST_F(ZRMStatisticsServiceTest, EventHandedOverBeforeStartIsDroppedWithAConsoleLine) {
    makeService();
    service_->send(std::make_shared<const ZRMTestEvent>("event"), 1);
    EXPECT_EQ(device_.console().text(), "ZRMStatisticsService not started\n");
    makeServiceWithoutStorage();
    service_->start();
    service_->send(std::make_shared<const ZRMTestEvent>("event"), 1);
    EXPECT_THAT(sender_->names(), ElementsAre("event"));
}

TEST_F(ZRMStatisticsServiceTest, EventsAreStoredInTheOrderOfTheirReportsHoweverManyWait) {
    start();
    std::vector<std::string> expected;
    for (int number = 0; number < 2000; ++number) {
        expected.push_back(std::to_string(number));
        send(expected.back());
    }
    device_.runUntilIdle();
    EXPECT_EQ(sender_->names(), expected);
    EXPECT_EQ(storedCount(), expected.size());
}

TEST_F(ZRMStatisticsServiceTest, EventThatCannotBeEncodedIsDroppedFromTheMiddle) {
    start();
    send("before");
    service_->send(ZRMTestEvent(ZRMDictionary{{"x", std::numeric_limits<double>::quiet_NaN()}}), 1);
    send("after");
    EXPECT_EQ(service_->unstoredEventCount(), 3U);
    device_.runUntilIdle();
    EXPECT_THAT(sender_->names(), ElementsAre("before", "after"));
    EXPECT_EQ(service_->unstoredEventCount(), 0U);
    EXPECT_EQ(service_->pendingEventCount(), 2U);
}

TEST_F(ZRMStatisticsServiceTest, EventsTakenBeforeAStopAreStoredAndNotSent) {
    start();
    send("one");
    send("two");
    service_->stop();
    device_.runUntilIdle();
    EXPECT_EQ(storedCount(), 2U);
    EXPECT_THAT(sender_->sent(), IsEmpty());
}

TEST_F(ZRMStatisticsServiceTest, EventsTakenBeforeTheServiceWasDroppedAreStored) {
    start();
    for (int number = 0; number < 100; ++number) {
        send(std::to_string(number));
    }
    service_.reset();
    device_.runUntilIdle();
    EXPECT_EQ(storedCount(), 100U);
    EXPECT_THAT(sender_->sent(), IsEmpty());
}

TEST_F(ZRMStatisticsServiceTest, ServiceMayBeDroppedWhileItsEventsAreStored) {
    start();
    for (int number = 0; number < 100; ++number) {
        send(std::to_string(number));
    }
    while (storedCount() == 0) {
        ASSERT_TRUE(device_.runOneTask());
    }
    service_.reset();
    device_.runUntilIdle();
    EXPECT_EQ(storedCount(), 100U);
}

TEST_F(ZRMStatisticsServiceTest, EachEventIsLoggedBeforeTheQueueIsEmptiedForIt) {
    makeService(5);
    insert(*storage_->context(), "123456", device_.now().secondsSince1970);
    service_->start();
    std::size_t sendsLogged = 0;
    device_.disk().faults().setHook(
        [&](std::uint64_t, ZRMSimulatedDiskOperation, const std::string&) {
            sendsLogged = sendsLogged == 0 ? countVerbose("Send event") : sendsLogged;
        });
    send("one");
    send("two");
    device_.runUntilIdle();
    device_.disk().faults().setHook({});
    // Both were handed on, in one go, before the store was touched for either.
    EXPECT_EQ(sendsLogged, 2U);
    EXPECT_THAT(errors(), ElementsAre("Storage is full, deleting all statistics"));
    EXPECT_EQ(countVerbose("Did delete event"), 1U);
    EXPECT_EQ(storedCount(), 2U);
}

TEST_F(ZRMStatisticsServiceTest, CountsEventsUntilTheyAreDeleted) {
    makeService();
    EXPECT_EQ(service_->pendingEventCount(), 0U);
    putRecord("left by an earlier run", 10);
    service_->start();
    EXPECT_EQ(service_->pendingEventCount(), 1U);
    send("event");
    EXPECT_EQ(service_->pendingEventCount(), 2U);
    device_.runUntilIdle();
    EXPECT_EQ(service_->pendingEventCount(), 2U);
    sender_->answer(0);
    sender_->answer(0);
    EXPECT_EQ(service_->pendingEventCount(), 2U);
    device_.runUntilIdle();
    EXPECT_EQ(service_->pendingEventCount(), 0U);
    send("event");
    service_->stop();
    EXPECT_EQ(service_->pendingEventCount(), 0U);
}

TEST_F(ZRMStatisticsServiceTest, CountsEventsAsUnstoredUntilTheyAreInTheStore) {
    start();
    EXPECT_EQ(service_->unstoredEventCount(), 0U);
    send("first");
    send("second");
    EXPECT_EQ(service_->unstoredEventCount(), 2U);
    device_.runUntilIdle();
    EXPECT_EQ(service_->unstoredEventCount(), 0U);
    EXPECT_EQ(service_->pendingEventCount(), 2U);
}

TEST_F(ZRMStatisticsServiceTest, CountsNoEventThatCouldNotBeStored) {
    start();
    device_.disk().faults().add({ZRMSimulatedDiskOperation::Write, "*-wal"});
    send("event");
    EXPECT_EQ(service_->pendingEventCount(), 1U);
    EXPECT_EQ(service_->unstoredEventCount(), 1U);
    device_.runUntilIdle();
    EXPECT_EQ(service_->pendingEventCount(), 0U);
    EXPECT_EQ(service_->unstoredEventCount(), 0U);
}

TEST_F(ZRMStatisticsServiceTest, CountsUploadsUnderWayWithoutAStorage) {
    makeServiceWithoutStorage();
    service_->start();
    send("event");
    EXPECT_EQ(service_->pendingEventCount(), 1U);
    EXPECT_EQ(service_->unstoredEventCount(), 0U);
    sender_->answer(0);
    EXPECT_EQ(service_->pendingEventCount(), 0U);
}
