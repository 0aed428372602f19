// What ZRMExecutor.h and ZRMCondition.h promise.
#include <gmock/gmock.h>

#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"

using testing::ElementsAre;

namespace {

class ZRMExecutorContract : public ZRMContract {};
class ZRMConditionContract : public ZRMContract {};

}  // namespace

TEST_P(ZRMExecutorContract, EverySerialQueueIsItsOwnWhateverItsLabel) {
    EXPECT_NE(serialQueue("same"), serialQueue("same"));
}

TEST_P(ZRMExecutorContract, ThereIsOneConcurrentQueueOfEachQuality) {
    const auto executor = platform()->executor;
    const auto utility = executor->concurrentQueue(ZRMQualityOfService::Utility);
    EXPECT_EQ(utility, executor->concurrentQueue(ZRMQualityOfService::Utility));
    EXPECT_NE(utility, executor->concurrentQueue(ZRMQualityOfService::Background));
}

TEST_P(ZRMExecutorContract, TheMainQueueIsAlwaysTheSameAndSerial) {
    const auto main = platform()->executor->mainQueue();
    EXPECT_EQ(main, platform()->executor->mainQueue());
    std::vector<std::string> expected;
    for (int number = 0; number < 100; ++number) {
        expected.push_back(std::to_string(number));
        main->post(note(expected.back()));
    }
    ASSERT_TRUE(waitForNotes(100));
    EXPECT_EQ(notes(), expected);
}

TEST_P(ZRMExecutorContract, TheMainQueueHasOneThreadThatIsNotTheCallers) {
    const auto executor = platform()->executor;
    for (int task = 0; task < 3; ++task) {
        executor->mainQueue()->post([executor, notes = notes_] {
            notes->add(std::to_string(executor->currentThreadIdentifier()));
        });
    }
    ASSERT_TRUE(waitForNotes(3));
    EXPECT_THAT(notes(), testing::Each(notes().front()));
    EXPECT_NE(notes().front(), std::to_string(executor->currentThreadIdentifier()));
}

TEST_P(ZRMExecutorContract, AThreadKeepsItsIdentifier) {
    const auto executor = platform()->executor;
    const auto number = executor->currentThreadIdentifier();
    EXPECT_NE(number, 0u);
    EXPECT_EQ(number, executor->currentThreadIdentifier());
}

TEST_P(ZRMConditionContract, AWaitEndsAtItsDeadlineWithFalse) {
    const auto condition = platform()->executor->makeCondition();
    const auto clock = platform()->clock;
    const ZRMDate deadline = clock->now().addingSeconds(0.02);
    condition->lock();
    while (condition->waitUntil(deadline)) {
    }
    condition->unlock();
    EXPECT_GE(clock->now(), deadline);
}

TEST_P(ZRMConditionContract, ADeadlineThatPassedEndsTheWaitAtOnce) {
    const auto condition = platform()->executor->makeCondition();
    const auto clock = platform()->clock;
    const double start = clock->uptimeSeconds();
    condition->lock();
    EXPECT_FALSE(condition->waitUntil(clock->now().addingSeconds(-10)));
    EXPECT_FALSE(condition->waitUntil(ZRMDate{-1e18}));
    condition->unlock();
    EXPECT_LT(clock->uptimeSeconds() - start, 20);
}

TEST_P(ZRMConditionContract, ASignalWakesAWaiterBeforeItsDeadlineWithTrue) {
    const std::shared_ptr condition = platform()->executor->makeCondition();
    const auto clock = platform()->clock;
    const auto signalled = std::make_shared<bool>(false);
    serialQueue()->post([=] {
        condition->lock();
        *signalled = true;
        condition->signal();
        condition->unlock();
    });
    bool woken = true;
    condition->lock();
    while (!*signalled && woken) {
        woken = condition->waitUntil(clock->now().addingSeconds(20));
    }
    EXPECT_TRUE(*signalled);
    EXPECT_TRUE(woken);
    condition->unlock();
}

TEST_P(ZRMConditionContract, TwoSignalsWakeTwoWaiters) {
    const std::shared_ptr condition = platform()->executor->makeCondition();
    const auto clock = platform()->clock;
    const auto tickets = std::make_shared<int>(0);
    for (int waiter = 0; waiter < 2; ++waiter) {
        serialQueue()->post([=, notes = notes_] {
            const ZRMDate deadline = clock->now().addingSeconds(20);
            condition->lock();
            while (*tickets == 0 && condition->waitUntil(deadline)) {
            }
            --*tickets;
            condition->unlock();
            notes->add("woken");
        });
    }
    for (int signal = 0; signal < 2; ++signal) {
        serialQueue()->post([=] {
            condition->lock();
            ++*tickets;
            condition->signal();
            condition->unlock();
        });
    }
    ASSERT_TRUE(waitForNotes(2));
    EXPECT_EQ(*tickets, 0);
}

TEST_P(ZRMConditionContract, AWaitGivesUpTheLockAndHoldsItAgainOnReturn) {
    const std::shared_ptr condition = platform()->executor->makeCondition();
    const auto clock = platform()->clock;
    const auto order = std::make_shared<std::vector<std::string>>();  // guarded by the condition
    serialQueue()->post([=, notes = notes_] {
        condition->lock();
        order->push_back("other in");
        condition->signal();
        order->push_back("other out");
        condition->unlock();
    });
    condition->lock();
    while (order->empty() && condition->waitUntil(clock->now().addingSeconds(20))) {
    }
    order->push_back("waiter");
    condition->unlock();
    EXPECT_THAT(*order, ElementsAre("other in", "other out", "waiter"));
}

TEST_P(ZRMConditionContract, ASignalWithoutAWaiterIsNoError) {
    const auto condition = platform()->executor->makeCondition();
    condition->signal();
    condition->lock();
    condition->signal();
    condition->unlock();
    EXPECT_NE(platform()->executor->makeCondition(), nullptr);
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMExecutorContract, zrm_contractBodies(), zrm_contractBodyName);
INSTANTIATE_TEST_SUITE_P(Bodies, ZRMConditionContract, zrm_contractBodies(), zrm_contractBodyName);
