#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

using testing::ElementsAre;

namespace {

class ZRMSimulatedScheduling : public testing::Test {
  protected:
    std::shared_ptr<ZRMQueue> serial(const std::string& label) {
        return device.platform()->executor->makeSerialQueue(label, ZRMQualityOfService::Default);
    }
    ZRMTask note(std::string text) {
        return [this, text = std::move(text)] { log.push_back(text); };
    }

    ZRMSimulatedDevice device;
    std::vector<std::string> log;
};

}  // namespace

TEST_F(ZRMSimulatedScheduling, RunsNothingUntilTold) {
    serial("a")->post(note("task"));
    EXPECT_TRUE(log.empty());
    device.runUntilIdle();
    EXPECT_THAT(log, ElementsAre("task"));
}

TEST_F(ZRMSimulatedScheduling, RunsTasksOfAllQueuesInTheOrderOfPosting) {
    const auto first = serial("first");
    const auto second = device.platform()->executor->concurrentQueue(ZRMQualityOfService::Utility);
    first->post(note("1"));
    second->post(note("2"));
    device.platform()->executor->mainQueue()->post(note("3"));
    first->post(note("4"));
    second->post(note("5"));
    device.runUntilIdle();
    EXPECT_THAT(log, ElementsAre("1", "2", "3", "4", "5"));
}

TEST_F(ZRMSimulatedScheduling, ShufflesTheSameWayForTheSameSeed) {
    const auto orderWithSeed = [](std::uint64_t seed) {
        ZRMSimulatedDevice other;
        other.setSchedulingSeed(seed);
        std::string order;
        const auto queue =
            other.platform()->executor->concurrentQueue(ZRMQualityOfService::Default);
        for (char name = 'a'; name <= 'j'; ++name) {
            queue->post([&order, name] { order += name; });
        }
        other.runUntilIdle();
        return order;
    };
    EXPECT_EQ(orderWithSeed(7), orderWithSeed(7));
    EXPECT_NE(orderWithSeed(7), orderWithSeed(8));
    EXPECT_NE(orderWithSeed(7), "abcdefghij");
}

TEST_F(ZRMSimulatedScheduling, KeepsTheOrderOfSerialQueuesUnderEverySeed) {
    for (std::uint64_t seed = 0; seed < 50; ++seed) {
        device.setSchedulingSeed(seed);
        const auto left = serial("left");
        const auto right = serial("right");
        std::string leftOrder;
        std::string rightOrder;
        for (char name = 'a'; name <= 'e'; ++name) {
            left->post([&leftOrder, name] { leftOrder += name; });
            right->post([&rightOrder, name] { rightOrder += name; });
        }
        device.runUntilIdle();
        EXPECT_EQ(leftOrder, "abcde");
        EXPECT_EQ(rightOrder, "abcde");
    }
}

TEST_F(ZRMSimulatedScheduling, RunningUntilIdleLetsNoTimePass) {
    const ZRMDate before = device.now();
    serial("a")->postAfter(0.000001, note("timer"));
    device.runUntilIdle();
    EXPECT_TRUE(log.empty());
    EXPECT_EQ(device.now(), before);
}

TEST_F(ZRMSimulatedScheduling, FiresTimersEachAtItsMoment) {
    const auto queue = serial("a");
    const ZRMDate start = device.now();
    std::vector<double> moments;
    const auto noteMoment = [&] { moments.push_back(device.now().secondsSince(start)); };
    queue->postAfter(3, noteMoment);
    queue->postAfter(1, noteMoment);
    queue->postAfter(1.5, noteMoment);
    device.advanceBy(10);
    EXPECT_THAT(moments, ElementsAre(1, 1.5, 3));
    EXPECT_EQ(device.now().secondsSince(start), 10);
}

TEST_F(ZRMSimulatedScheduling, FiresATimerMadeWhileTimeAdvancesWithinTheSameAdvance) {
    const auto queue = serial("a");
    queue->postAfter(1, [&] { queue->postAfter(1, note("second")); });
    device.advanceBy(2);
    EXPECT_THAT(log, ElementsAre("second"));
}

TEST_F(ZRMSimulatedScheduling, WallClockJumpMakesTimersDueAndLeavesTheUptimeAlone) {
    const double uptime = device.platform()->clock->uptimeSeconds();
    serial("a")->postAfter(3600, note("hour"));
    device.jumpWallClock(3599);
    EXPECT_TRUE(log.empty());
    device.jumpWallClock(1);
    EXPECT_THAT(log, ElementsAre("hour"));
    EXPECT_EQ(device.platform()->clock->uptimeSeconds(), uptime);
}

TEST_F(ZRMSimulatedScheduling, WallClockJumpBackDelaysTimers) {
    serial("a")->postAfter(10, note("timer"));
    device.jumpWallClock(-100);
    device.advanceBy(109);
    EXPECT_TRUE(log.empty());
    device.advanceBy(1);
    EXPECT_THAT(log, ElementsAre("timer"));
}

TEST_F(ZRMSimulatedScheduling, RepeatingTimerSkipsThePeriodsOfAWallClockJump) {
    serial("a")->postEvery(10, note("tick"));
    device.jumpWallClock(35);
    EXPECT_THAT(log, ElementsAre("tick"));
    device.advanceBy(4);
    EXPECT_EQ(log.size(), 1u);
    device.advanceBy(1);
    EXPECT_EQ(log.size(), 2u);
}

TEST_F(ZRMSimulatedScheduling, RunUntilStopsAtTheMomentTheConditionHolds) {
    const ZRMDate start = device.now();
    serial("a")->postAfter(5, note("timer"));
    EXPECT_TRUE(device.runUntil([&] { return !log.empty(); }, 60));
    EXPECT_EQ(device.now().secondsSince(start), 5);
}

TEST_F(ZRMSimulatedScheduling, RunUntilGivesUpAfterItsTime) {
    const ZRMDate start = device.now();
    EXPECT_FALSE(device.runUntil([] { return false; }, 60));
    EXPECT_EQ(device.now().secondsSince(start), 60);
}

TEST_F(ZRMSimulatedScheduling, EachQueueHasAThreadNumberOfItsOwn) {
    const auto executor = device.platform()->executor;
    std::vector<std::uint64_t> numbers;
    const auto noteNumber = [&] { numbers.push_back(executor->currentThreadIdentifier()); };
    const auto first = serial("first");
    const auto second = serial("second");
    executor->mainQueue()->post(noteNumber);
    first->post(noteNumber);
    second->post(noteNumber);
    first->post(noteNumber);
    device.runUntilIdle();
    ASSERT_EQ(numbers.size(), 4u);
    EXPECT_EQ(numbers[0], ZRMSimulatedExecutor::kMainThreadIdentifier);
    EXPECT_EQ(numbers[1], numbers[3]);
    EXPECT_NE(numbers[1], numbers[2]);
    EXPECT_EQ(executor->currentThreadIdentifier(), ZRMSimulatedExecutor::kOutsideThreadIdentifier);
}

TEST_F(ZRMSimulatedScheduling, RecordsTheQueuesThatWereMade) {
    device.platform()->executor->makeSerialQueue("loop", ZRMQualityOfService::UserInitiated);
    const auto& made = device.executor().madeQueues();
    ASSERT_EQ(made.size(), 1u);
    EXPECT_EQ(made[0].label, "loop");
    EXPECT_EQ(made[0].qualityOfService, ZRMQualityOfService::UserInitiated);
}

TEST_F(ZRMSimulatedScheduling, AWaitRunsOtherQueuesAndNotItsOwn) {
    const auto condition = device.platform()->executor->makeCondition();
    const auto waiting = serial("waiting");
    const auto other = serial("other");
    waiting->post([&] {
        condition->lock();
        EXPECT_TRUE(condition->waitUntil(device.now().addingSeconds(10)));
        condition->unlock();
        log.push_back("woken");
    });
    waiting->post(note("after"));
    other->post([&] {
        EXPECT_FALSE(waiting->isCurrent());
        condition->lock();
        condition->signal();
        condition->unlock();
        log.push_back("signalled");
    });
    device.runUntilIdle();
    EXPECT_THAT(log, ElementsAre("signalled", "woken", "after"));
}

TEST_F(ZRMSimulatedScheduling, AWaitLetsTimePassOnlyToItsDeadline) {
    const auto condition = device.platform()->executor->makeCondition();
    const ZRMDate start = device.now();
    condition->lock();
    EXPECT_FALSE(condition->waitUntil(start.addingSeconds(2.5)));
    condition->unlock();
    EXPECT_EQ(device.now().secondsSince(start), 2.5);
}

TEST_F(ZRMSimulatedScheduling, AWaitIsWokenByATimer) {
    const auto condition = device.platform()->executor->makeCondition();
    const ZRMDate start = device.now();
    serial("a")->postAfter(1, [&] { condition->signal(); });
    condition->lock();
    EXPECT_TRUE(condition->waitUntil(ZRMDate{std::numeric_limits<double>::infinity()}));
    condition->unlock();
    EXPECT_EQ(device.now().secondsSince(start), 1);
}

TEST(ZRMSimulatedSchedulingDeathTest, AWaitThatNothingCanEndEndsTheProgram) {
    const auto waitForEver = [] {
        ZRMSimulatedDevice device;
        const auto condition = device.platform()->executor->makeCondition();
        condition->lock();
        condition->waitUntil(ZRMDate{std::numeric_limits<double>::infinity()});
    };
    EXPECT_DEATH(waitForEver(), "waits for ever");
}

TEST(ZRMSimulatedSchedulingDeathTest, ALockTakenTwiceEndsTheProgram) {
    const auto lockTwice = [] {
        ZRMSimulatedDevice device;
        const auto condition = device.platform()->executor->makeCondition();
        condition->lock();
        condition->lock();
    };
    EXPECT_DEATH(lockTwice(), "locked twice");
}

TEST_F(ZRMSimulatedScheduling, TwoHundredThousandTasksAreQuick) {
    const auto queue = serial("a");
    int left = 200000;
    ZRMTask step = [&] {
        if (--left > 0) {
            queue->post(step);
        }
    };
    queue->post(step);
    device.runUntilIdle();
    EXPECT_EQ(left, 0);
    EXPECT_EQ(device.tasksRun(), 200000u);
}
