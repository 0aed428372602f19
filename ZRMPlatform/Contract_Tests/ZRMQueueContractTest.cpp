// What ZRMQueue.h promises of queues.
#include <algorithm>
#include <atomic>

#include <gmock/gmock.h>

#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"

using testing::ElementsAre;

namespace {

class ZRMQueueContract : public ZRMContract {};

std::vector<std::string> numbers(int count) {
    std::vector<std::string> texts;
    for (int number = 0; number < count; ++number) {
        texts.push_back(std::to_string(number));
    }
    return texts;
}

}  // namespace

TEST_P(ZRMQueueContract, KeepsItsLabel) {
    EXPECT_EQ(serialQueue("com.example.queue")->label(), "com.example.queue");
}

TEST_P(ZRMQueueContract, RunsSerialTasksInOrderOfPosting) {
    const auto queue = serialQueue();
    for (const auto& number : numbers(500)) {
        queue->post(note(number));
    }
    ASSERT_TRUE(waitForNotes(500));
    EXPECT_EQ(notes(), numbers(500));
}

TEST_P(ZRMQueueContract, RunsSerialTasksOneAtATime) {
    const auto queue = serialQueue();
    const auto inside = std::make_shared<std::atomic<int>>(0);
    const std::shared_ptr condition = platform()->executor->makeCondition();
    for (int task = 0; task < 20; ++task) {
        queue->post([notes = notes_, inside, condition, clock = platform()->clock] {
            const int others = inside->fetch_add(1);
            condition->lock();
            condition->waitUntil(clock->now().addingSeconds(0.001));
            condition->unlock();
            inside->fetch_sub(1);
            notes->add(std::to_string(others));
        });
    }
    ASSERT_TRUE(waitForNotes(20));
    EXPECT_THAT(notes(), testing::Each("0"));
}

TEST_P(ZRMQueueContract, WhatASerialTaskWroteTheNextOneSees) {
    const auto queue = serialQueue();
    const auto plain = std::make_shared<int>(0);
    for (int task = 0; task < 1000; ++task) {
        queue->post([plain] { ++*plain; });
    }
    queue->post([plain, notes = notes_] { notes->add(std::to_string(*plain)); });
    ASSERT_TRUE(waitForNotes(1));
    EXPECT_THAT(notes(), ElementsAre("1000"));
}

TEST_P(ZRMQueueContract, RunsConcurrentTasksSideBySide) {
    const std::shared_ptr condition = platform()->executor->makeCondition();
    const auto arrived = std::make_shared<bool>(false);
    concurrentQueue()->post([=, notes = notes_, clock = platform()->clock] {
        const auto deadline = clock->now().addingSeconds(20);
        condition->lock();
        while (!*arrived && clock->now() < deadline) {
            condition->waitUntil(deadline);
        }
        notes->add(*arrived ? "met" : "alone");
        condition->unlock();
    });
    concurrentQueue()->post([=] {
        condition->lock();
        *arrived = true;
        condition->signal();
        condition->unlock();
    });
    ASSERT_TRUE(waitForNotes(1));
    EXPECT_THAT(notes(), ElementsAre("met"));
}

TEST_P(ZRMQueueContract, RunsEveryConcurrentTaskOnce) {
    for (const auto& number : numbers(200)) {
        concurrentQueue()->post(note(number));
    }
    ASSERT_TRUE(waitForNotes(200));
    EXPECT_THAT(notes(), testing::UnorderedElementsAreArray(numbers(200)));
}

TEST_P(ZRMQueueContract, ATaskMayPostToAnyQueue) {
    const auto queue = serialQueue();
    const auto other = serialQueue();
    queue->post(
        [=, this, main = platform()->executor->mainQueue(), concurrent = concurrentQueue()] {
            queue->post(note("own"));
            other->post(note("other"));
            main->post(note("main"));
            concurrent->post(note("concurrent"));
        });
    ASSERT_TRUE(waitForNotes(4));
    EXPECT_THAT(notes(), testing::UnorderedElementsAre("own", "other", "main", "concurrent"));
}

TEST_P(ZRMQueueContract, APostNeverRunsTheTaskBeforeItReturns) {
    const auto queue = serialQueue();
    queue->post([=, notes = notes_] {
        queue->post([=] { notes->add("posted"); });
        queue->postAfter(0, [=] { notes->add("timer"); });
        notes->add("returned");
    });
    ASSERT_TRUE(waitForNotes(3));
    EXPECT_EQ(notes().front(), "returned");
}

TEST_P(ZRMQueueContract, DroppingTheLastReferenceLetsPostedTasksRun) {
    serialQueue()->post(note("ran"));
    EXPECT_TRUE(waitForNotes(1));
}

TEST_P(ZRMQueueContract, DroppingTheLastReferenceLetsTimersRun) {
    serialQueue()->postAfter(0.01, note("ran"));
    EXPECT_TRUE(waitForNotes(1));
}

TEST_P(ZRMQueueContract, LetsGoOfATaskThatRan) {
    const auto owned = std::make_shared<int>(0);
    const auto queue = serialQueue();
    queue->post([owned] {});
    queue->post(note("after"));
    ASSERT_TRUE(waitForNotes(1));
    EXPECT_EQ(owned.use_count(), 1);
}

TEST_P(ZRMQueueContract, IsCurrentInsideItsOwnTasksAlone) {
    const auto queue = serialQueue();
    const auto other = serialQueue();
    const auto ask = [=, notes = notes_](const std::string& where) {
        notes->add(where + (queue->isCurrent() ? " yes" : " no"));
    };
    ask("outside");
    queue->post([=] { ask("own"); });
    ASSERT_TRUE(waitForNotes(2));
    other->post([=] { ask("other"); });
    ASSERT_TRUE(waitForNotes(3));
    EXPECT_THAT(notes(), ElementsAre("outside no", "own yes", "other no"));
}

TEST_P(ZRMQueueContract, AConcurrentQueueIsCurrentInsideItsTasks) {
    const auto queue = concurrentQueue();
    EXPECT_FALSE(queue->isCurrent());
    queue->post([=, notes = notes_] { notes->add(queue->isCurrent() ? "yes" : "no"); });
    ASSERT_TRUE(waitForNotes(1));
    EXPECT_THAT(notes(), ElementsAre("yes"));
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMQueueContract, zrm_contractBodies(), zrm_contractBodyName);
