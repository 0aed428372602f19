#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMAsynchronousOperation.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMBlockOperation.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMOperationQueue.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class QueuedOperation : public ZRMAsynchronousOperation {
  public:
    QueuedOperation() : ZRMAsynchronousOperation(nullptr) {}
    void execute() override {}
    using ZRMAsynchronousOperation::finish;
};

class ZRMOperationQueueTest : public testing::Test {
  protected:
    std::shared_ptr<ZRMOperationQueue> makeQueue(int limit = ZRMOperationQueue::kUnlimited) {
        return std::make_shared<ZRMOperationQueue>(executor_, "test.queue", limit);
    }
    std::shared_ptr<ZRMOperation> recording(int number) {
        return ZRMBlockOperation::blockOperationWithBlock(
            [this, number] { ran_.push_back(number); });
    }
    // Runs everything that is due.
    void settle() { device_.runUntilIdle(); }

    ZRMSimulatedDevice device_;
    const std::shared_ptr<ZRMExecutor> executor_ = device_.platform()->executor;
    std::vector<int> ran_;
};

TEST_F(ZRMOperationQueueTest, IsNamedAfterAClass) {
    EXPECT_EQ(zrm_queueNameForClass("ZRMCloudKitImpl"), "ZRMCloudKitImpl.queue");
    const ZRMOperationQueue queue(executor_, zrm_queueNameForClass("ZRMCloudKitImpl"), 1);
    EXPECT_EQ(queue.name(), "ZRMCloudKitImpl.queue");
    EXPECT_EQ(queue.maxConcurrentOperationCount(), 1);
}

TEST_F(ZRMOperationQueueTest, DoesNotRunAnOperationBeforeTheAdditionReturns) {
    const auto queue = makeQueue();
    queue->addOperation(recording(1));
    EXPECT_THAT(ran_, IsEmpty());
    EXPECT_EQ(queue->operationCount(), 1U);
    settle();
    EXPECT_THAT(ran_, ElementsAre(1));
    EXPECT_EQ(queue->operationCount(), 0U);
}

TEST_F(ZRMOperationQueueTest, StartsReadyOperationsInTheOrderOfTheirAddition) {
    for (const int limit : {1, 4, ZRMOperationQueue::kUnlimited}) {
        ran_.clear();
        const auto queue = makeQueue(limit);
        queue->addOperation(recording(1));
        queue->addOperations({recording(2), recording(3)});
        queue->addOperationWithBlock([this] { ran_.push_back(4); });
        settle();
        EXPECT_THAT(ran_, ElementsAre(1, 2, 3, 4)) << limit;
    }
}

TEST_F(ZRMOperationQueueTest, AllOfAGroupAreAddedBeforeAnyStarts) {
    const auto queue = makeQueue();
    std::size_t count = 0;
    queue->addOperations(
        {ZRMBlockOperation::blockOperationWithBlock([&] { count = queue->operationCount(); }),
         recording(1), recording(2)});
    settle();
    EXPECT_EQ(count, 3U);
}

TEST_F(ZRMOperationQueueTest, AnOperationWaitsForItsDependencies) {
    const auto queue = makeQueue();
    const auto first = std::make_shared<QueuedOperation>();
    const auto second = std::make_shared<QueuedOperation>();
    const auto waiting = recording(1);
    waiting->addDependency(first);
    waiting->addDependency(second);
    queue->addOperations({waiting, first, second, recording(2)});
    settle();
    EXPECT_THAT(ran_, ElementsAre(2));
    second->finish();
    settle();
    EXPECT_THAT(ran_, ElementsAre(2));
    first->finish();
    settle();
    EXPECT_THAT(ran_, ElementsAre(2, 1));
}

TEST_F(ZRMOperationQueueTest, AWaitingOperationTakesNoPlaceOfTheLimit) {
    const auto queue = makeQueue(1);
    const auto first = std::make_shared<QueuedOperation>();
    const auto waiting = recording(1);
    waiting->addDependency(first);
    queue->addOperations({waiting, recording(2), first});
    settle();
    EXPECT_THAT(ran_, ElementsAre(2));
    EXPECT_TRUE(first->isExecuting());
    first->finish();
    settle();
    EXPECT_THAT(ran_, ElementsAre(2, 1));
}

TEST_F(ZRMOperationQueueTest, AnOperationThatBecomesReadyGoesBeforeThoseAddedLater) {
    const auto queue = makeQueue(1);
    const auto first = std::make_shared<QueuedOperation>();
    const auto waiting = recording(1);
    waiting->addDependency(first);
    queue->addOperations({first, waiting, recording(2), recording(3)});
    settle();
    EXPECT_THAT(ran_, IsEmpty());
    first->finish();
    settle();
    EXPECT_THAT(ran_, ElementsAre(1, 2, 3));
}

TEST_F(ZRMOperationQueueTest, DependenciesReachAcrossQueues) {
    const auto here = makeQueue(1);
    const auto there = makeQueue(1);
    const auto first = std::make_shared<QueuedOperation>();
    const auto waiting = recording(1);
    waiting->addDependency(first);
    here->addOperation(waiting);
    there->addOperation(first);
    settle();
    EXPECT_THAT(ran_, IsEmpty());
    first->finish();
    settle();
    EXPECT_THAT(ran_, ElementsAre(1));
}

TEST_F(ZRMOperationQueueTest, ADependencyThatHasFinishedDoesNotHoldUp) {
    const auto queue = makeQueue();
    const auto first = recording(1);
    first->start();
    const auto waiting = recording(2);
    waiting->addDependency(first);
    queue->addOperation(waiting);
    settle();
    EXPECT_THAT(ran_, ElementsAre(1, 2));
}

TEST_F(ZRMOperationQueueTest, ADependencyThatIsOnNoQueueHoldsUpUntilItRan) {
    const auto queue = makeQueue();
    const auto first = recording(1);
    const auto waiting = recording(2);
    waiting->addDependency(first);
    queue->addOperation(waiting);
    settle();
    EXPECT_THAT(ran_, IsEmpty());
    first->start();
    settle();
    EXPECT_THAT(ran_, ElementsAre(1, 2));
}

TEST_F(ZRMOperationQueueTest, ACancelledDependencyLetsGoOnceItHasFinished) {
    const auto queue = makeQueue();
    const auto first = recording(1);
    const auto waiting = recording(2);
    waiting->addDependency(first);
    queue->addOperations({first, waiting});
    first->cancel();
    settle();
    EXPECT_THAT(ran_, ElementsAre(2));
}

TEST_F(ZRMOperationQueueTest, RunsNoMoreThanTheLimitAtATime) {
    const auto queue = makeQueue(2);
    std::vector<std::shared_ptr<QueuedOperation>> operations;
    for (int index = 0; index < 4; ++index) {
        operations.push_back(std::make_shared<QueuedOperation>());
        queue->addOperation(operations.back());
    }
    const auto executing = [&] {
        std::vector<int> numbers;
        for (int index = 0; index < 4; ++index) {
            if (operations[static_cast<std::size_t>(index)]->isExecuting()) {
                numbers.push_back(index);
            }
        }
        return numbers;
    };
    settle();
    EXPECT_THAT(executing(), ElementsAre(0, 1));
    operations[1]->finish();
    settle();
    EXPECT_THAT(executing(), ElementsAre(0, 2));
    operations[0]->finish();
    operations[2]->finish();
    settle();
    EXPECT_THAT(executing(), ElementsAre(3));
    EXPECT_EQ(queue->operationCount(), 1U);
}

TEST_F(ZRMOperationQueueTest, ALimitOfOneTakesASerialQueueOfItsName) {
    const ZRMOperationQueue queue(executor_, "mine.queue", 1, ZRMQualityOfService::Utility);
    const auto& made = device_.executor().madeQueues();
    ASSERT_FALSE(made.empty());
    EXPECT_EQ(made.back().label, "mine.queue");
    EXPECT_EQ(made.back().qualityOfService, ZRMQualityOfService::Utility);
}

TEST_F(ZRMOperationQueueTest, StartsNothingWhileSuspended) {
    const auto queue = makeQueue();
    EXPECT_FALSE(queue->isSuspended());
    queue->setSuspended(true);
    EXPECT_TRUE(queue->isSuspended());
    queue->addOperations({recording(1), recording(2)});
    settle();
    EXPECT_THAT(ran_, IsEmpty());
    EXPECT_EQ(queue->operationCount(), 2U);
    queue->setSuspended(false);
    settle();
    EXPECT_THAT(ran_, ElementsAre(1, 2));
}

TEST_F(ZRMOperationQueueTest, ASuspensionHoldsBackWhatWasHandedToTheExecutorAlready) {
    const auto queue = makeQueue();
    queue->addOperation(recording(1));
    queue->setSuspended(true);
    settle();
    EXPECT_THAT(ran_, IsEmpty());
    queue->setSuspended(false);
    settle();
    EXPECT_THAT(ran_, ElementsAre(1));
}

TEST_F(ZRMOperationQueueTest, AnOperationMaySuspendItsOwnQueue) {
    for (const int limit : {1, ZRMOperationQueue::kUnlimited}) {
        ran_.clear();
        const auto queue = makeQueue(limit);
        queue->addOperationWithBlock([&] {
            ran_.push_back(1);
            queue->setSuspended(true);
        });
        queue->addOperation(recording(2));
        settle();
        EXPECT_THAT(ran_, ElementsAre(1)) << limit;
        queue->setSuspended(false);
        settle();
        EXPECT_THAT(ran_, ElementsAre(1, 2)) << limit;
    }
}

TEST_F(ZRMOperationQueueTest, WhatRunsGoesOnWhileSuspended) {
    const auto queue = makeQueue(1);
    const auto running = std::make_shared<QueuedOperation>();
    queue->addOperations({running, recording(1)});
    settle();
    queue->setSuspended(true);
    EXPECT_TRUE(running->isExecuting());
    running->finish();
    settle();
    EXPECT_EQ(queue->operationCount(), 1U);
    EXPECT_THAT(ran_, IsEmpty());
}

TEST_F(ZRMOperationQueueTest, ACancelledOperationOnlyFinishes) {
    const auto queue = makeQueue();
    const auto operation = recording(1);
    queue->addOperation(operation);
    operation->cancel();
    EXPECT_FALSE(operation->isFinished());
    settle();
    EXPECT_TRUE(operation->isFinished());
    EXPECT_THAT(ran_, IsEmpty());
    EXPECT_EQ(queue->operationCount(), 0U);
}

TEST_F(ZRMOperationQueueTest, ACancelledOperationWaitsForItsDependenciesNoMore) {
    const auto queue = makeQueue();
    const auto first = std::make_shared<QueuedOperation>();
    const auto before = recording(1);
    const auto after = recording(2);
    before->addDependency(first);
    after->addDependency(first);
    before->cancel();
    queue->addOperations({before, after});
    after->cancel();
    settle();
    EXPECT_TRUE(before->isFinished());
    EXPECT_TRUE(after->isFinished());
    EXPECT_THAT(ran_, IsEmpty());
}

TEST_F(ZRMOperationQueueTest, ACancelledOperationOfASuspendedQueueFinishesOnceItGoesOn) {
    const auto queue = makeQueue();
    queue->setSuspended(true);
    const auto operation = recording(1);
    queue->addOperation(operation);
    queue->cancelAllOperations();
    settle();
    EXPECT_FALSE(operation->isFinished());
    queue->setSuspended(false);
    settle();
    EXPECT_TRUE(operation->isFinished());
    EXPECT_THAT(ran_, IsEmpty());
}

TEST_F(ZRMOperationQueueTest, CancelAllReachesWaitingAndRunningOperations) {
    const auto queue = makeQueue(1);
    const auto running = std::make_shared<QueuedOperation>();
    const auto waiting = recording(1);
    queue->addOperations({running, waiting});
    settle();
    queue->cancelAllOperations();
    EXPECT_TRUE(running->isCancelled());
    EXPECT_TRUE(waiting->isCancelled());
    EXPECT_TRUE(running->isExecuting());
    running->finish();
    settle();
    EXPECT_EQ(queue->operationCount(), 0U);
}

TEST_F(ZRMOperationQueueTest, KeepsAnOperationAliveUntilItHasFinished) {
    const auto queue = makeQueue();
    auto operation = std::make_shared<QueuedOperation>();
    const std::weak_ptr<QueuedOperation> weak = operation;
    queue->addOperation(std::move(operation));
    settle();
    ASSERT_FALSE(weak.expired());
    weak.lock()->finish();
    EXPECT_TRUE(weak.expired());
}

TEST_F(ZRMOperationQueueTest, ADroppedQueueStillRunsItsOperations) {
    auto queue = makeQueue(1);
    auto operation = std::make_shared<QueuedOperation>();
    const std::weak_ptr<QueuedOperation> weak = operation;
    const auto waiting = recording(2);
    waiting->addDependency(operation);
    queue->addOperations({std::move(operation), recording(1), waiting});
    queue.reset();
    settle();
    ASSERT_FALSE(weak.expired());
    EXPECT_TRUE(weak.lock()->isExecuting());
    weak.lock()->finish();
    settle();
    EXPECT_THAT(ran_, ElementsAre(1, 2));
    EXPECT_TRUE(weak.expired());
}

TEST_F(ZRMOperationQueueTest, DroppingASuspendedQueueLetsItsOperationsRun) {
    auto queue = makeQueue();
    queue->setSuspended(true);
    queue->addOperation(recording(1));
    queue.reset();
    settle();
    EXPECT_THAT(ran_, ElementsAre(1));
}

TEST_F(ZRMOperationQueueTest, AnOperationMayDropTheQueueItRunsOn) {
    auto queue = makeQueue(1);
    queue->addOperationWithBlock([&] { queue.reset(); });
    queue->addOperation(recording(1));
    settle();
    EXPECT_THAT(ran_, ElementsAre(1));
}

TEST_F(ZRMOperationQueueTest, AnOperationMayAddToTheQueueItRunsOn) {
    const auto queue = makeQueue(1);
    queue->addOperationWithBlock([&] { queue->addOperation(recording(2)); });
    queue->addOperation(recording(1));
    settle();
    EXPECT_THAT(ran_, ElementsAre(1, 2));
}

TEST_F(ZRMOperationQueueTest, RefusesWhatItCannotRun) {
    const auto queue = makeQueue();
    EXPECT_THROW(queue->addOperation(nullptr), ZRMInvalidArgument);
    EXPECT_THROW(queue->addOperationWithBlock(nullptr), ZRMInvalidArgument);

    const auto queued = recording(1);
    queue->addOperation(queued);
    EXPECT_THROW(queue->addOperation(queued), ZRMInvalidArgument);
    EXPECT_THROW(makeQueue()->addOperation(queued), ZRMInvalidArgument);

    const auto finished = recording(2);
    finished->start();
    EXPECT_THROW(queue->addOperation(finished), ZRMInvalidArgument);

    const auto executing = std::make_shared<QueuedOperation>();
    executing->start();
    EXPECT_THROW(queue->addOperation(executing), ZRMInvalidArgument);
    EXPECT_EQ(queue->operationCount(), 1U);
}

TEST_F(ZRMOperationQueueTest, RefusesAGroupAsAWhole) {
    const auto queue = makeQueue();
    const auto good = recording(1);
    EXPECT_THROW(queue->addOperations({good, good}), ZRMInvalidArgument);
    EXPECT_THROW(queue->addOperations({good, nullptr}), ZRMInvalidArgument);
    EXPECT_EQ(queue->operationCount(), 0U);
    queue->addOperation(good);
    settle();
    EXPECT_THAT(ran_, ElementsAre(1)) << "the refusal left it free for a queue";
}

TEST_F(ZRMOperationQueueTest, AnOperationThatEndsBeforeItsTurnMakesRoom) {
    const auto queue = makeQueue(1);
    const auto running = std::make_shared<QueuedOperation>();
    const auto ended = std::make_shared<QueuedOperation>();
    queue->addOperations({running, ended, recording(1)});
    settle();
    ended->finish();
    EXPECT_EQ(queue->operationCount(), 2U);
    running->finish();
    settle();
    EXPECT_THAT(ran_, ElementsAre(1));
}

TEST_F(ZRMOperationQueueTest, StartsInOrderInWhateverOrderTheExecutorRunsItsTasks) {
    for (std::uint64_t seed = 1; seed <= 50; ++seed) {
        ran_.clear();
        device_.setSchedulingSeed(seed);
        const auto queue = makeQueue(seed % 2 == 0 ? 3 : ZRMOperationQueue::kUnlimited);
        for (int number = 0; number < 20; ++number) {
            queue->addOperation(recording(number));
        }
        settle();
        ASSERT_EQ(ran_.size(), 20U) << seed;
        EXPECT_TRUE(std::ranges::is_sorted(ran_)) << seed;
    }
}

TEST_F(ZRMOperationQueueTest, RunsTenThousandOperationsWithOneTaskEachAtMost) {
    for (const int limit : {1, ZRMOperationQueue::kUnlimited}) {
        ran_.clear();
        const auto queue = makeQueue(limit);
        const auto before = device_.tasksRun();
        for (int number = 0; number < 10000; ++number) {
            queue->addOperation(recording(number));
        }
        settle();
        ASSERT_EQ(ran_.size(), 10000U);
        EXPECT_TRUE(std::ranges::is_sorted(ran_));
        EXPECT_LE(device_.tasksRun() - before, 10000U);
    }
}

TEST_F(ZRMOperationQueueTest, ATaskRunsSixteenOperationsInARowAndLeavesTheRestToTheNext) {
    const auto queue = makeQueue(1);
    const auto before = device_.tasksRun();
    for (int number = 0; number < 40; ++number) {
        queue->addOperation(recording(number));
    }
    settle();
    EXPECT_EQ(ran_.size(), 40U);
    EXPECT_EQ(device_.tasksRun() - before, 3U);
}

TEST_F(ZRMOperationQueueTest, AnOperationThatGoesOnEndsTheTaskThatStartedIt) {
    const auto queue = makeQueue(2);
    const auto goesOn = std::make_shared<QueuedOperation>();
    queue->addOperations({goesOn, recording(1), recording(2)});
    settle();
    EXPECT_TRUE(goesOn->isExecuting());
    EXPECT_THAT(ran_, ElementsAre(1, 2));
    goesOn->finish();
    queue->addOperations({recording(3), recording(4)});
    settle();
    EXPECT_THAT(ran_, ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(queue->operationCount(), 0U);
}

TEST_F(ZRMOperationQueueTest, AChainOfTenThousandDependenciesRunsInOrder) {
    const auto queue = makeQueue();
    std::vector<std::shared_ptr<ZRMOperation>> operations;
    for (int number = 0; number < 10000; ++number) {
        operations.push_back(recording(number));
        if (number > 0) {
            operations.back()->addDependency(operations[operations.size() - 2]);
        }
    }
    queue->addOperations(operations);
    operations.clear();
    settle();
    ASSERT_EQ(ran_.size(), 10000U);
    EXPECT_TRUE(std::ranges::is_sorted(ran_));
}

TEST_F(ZRMOperationQueueTest, OneOperationMayWaitForTenThousand) {
    const auto queue = makeQueue();
    const auto last = recording(-1);
    std::vector<std::shared_ptr<ZRMOperation>> operations = {last};
    for (int number = 0; number < 10000; ++number) {
        operations.push_back(recording(number));
        last->addDependency(operations.back());
    }
    queue->addOperations(operations);
    settle();
    ASSERT_EQ(ran_.size(), 10001U);
    EXPECT_EQ(ran_.back(), -1);
}

}  // namespace
