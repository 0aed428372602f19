#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMBlockOperation.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMOperation.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::shared_ptr<std::vector<std::string>> recordStates(ZRMOperation& operation) {
    auto changes = std::make_shared<std::vector<std::string>>();
    operation.addChangeObserver([changes](const std::string& key, bool isPrior) {
        changes->push_back((isPrior ? "will " : "did ") + key);
    });
    return changes;
}

TEST(ZRMOperation, RunsItsBlockOnTheCallersThreadAndIsFinishedThen) {
    int runs = 0;
    const auto operation = ZRMBlockOperation::blockOperationWithBlock([&] { ++runs; });
    EXPECT_FALSE(operation->isFinished());
    EXPECT_FALSE(operation->isAsynchronous());
    operation->start();
    EXPECT_EQ(runs, 1);
    EXPECT_TRUE(operation->isFinished());
    EXPECT_FALSE(operation->isExecuting());
}

TEST(ZRMOperation, IsExecutingWhileItsBlockRuns) {
    std::weak_ptr<ZRMOperation> weak;
    bool wasExecuting = false;
    const auto operation = ZRMBlockOperation::blockOperationWithBlock([&] {
        const auto self = weak.lock();
        wasExecuting = self->isExecuting() && !self->isFinished();
    });
    weak = operation;
    operation->start();
    EXPECT_TRUE(wasExecuting);
}

TEST(ZRMOperation, AnnouncesExecutingThenFinished) {
    const auto operation = ZRMBlockOperation::blockOperationWithBlock([] {});
    const auto changes = recordStates(*operation);
    operation->start();
    EXPECT_THAT(*changes, ElementsAre("will isExecuting", "did isExecuting", "will isExecuting",
                                      "will isFinished", "did isExecuting", "did isFinished"));
}

TEST(ZRMOperation, OnlyFinishesWhenItWasCancelledBefore) {
    int runs = 0;
    const auto operation = ZRMBlockOperation::blockOperationWithBlock([&] { ++runs; });
    const auto changes = recordStates(*operation);
    operation->cancel();
    EXPECT_FALSE(operation->isFinished());
    operation->start();
    EXPECT_EQ(runs, 0);
    EXPECT_TRUE(operation->isFinished());
    EXPECT_TRUE(operation->isCancelled());
    EXPECT_THAT(*changes, ElementsAre("will isCancelled", "did isCancelled", "will isFinished",
                                      "did isFinished"));
}

TEST(ZRMOperation, RunsOnce) {
    int runs = 0;
    const auto operation = ZRMBlockOperation::blockOperationWithBlock([&] { ++runs; });
    operation->start();
    operation->start();
    EXPECT_EQ(runs, 1);
}

TEST(ZRMOperation, CancelAnnouncesItselfOnceAndHasNoEffectOnceFinished) {
    const auto operation = ZRMBlockOperation::blockOperationWithBlock([] {});
    const auto changes = recordStates(*operation);
    operation->cancel();
    operation->cancel();
    EXPECT_THAT(*changes, ElementsAre("will isCancelled", "did isCancelled"));

    const auto finished = ZRMBlockOperation::blockOperationWithBlock([] {});
    finished->start();
    finished->cancel();
    EXPECT_FALSE(finished->isCancelled());
}

TEST(ZRMOperation, IsReadyOnceAllDependenciesHaveFinished) {
    const auto first = ZRMBlockOperation::blockOperationWithBlock([] {});
    const auto second = ZRMBlockOperation::blockOperationWithBlock([] {});
    const auto waiting = ZRMBlockOperation::blockOperationWithBlock([] {});
    EXPECT_TRUE(waiting->isReady());
    waiting->addDependency(first);
    waiting->addDependency(second);
    EXPECT_THAT(waiting->dependencies(), ElementsAre(first, second));
    EXPECT_FALSE(waiting->isReady());
    second->start();
    EXPECT_FALSE(waiting->isReady());
    first->start();
    EXPECT_TRUE(waiting->isReady());
}

TEST(ZRMOperation, IsReadyWhenCancelledWhateverItsDependenciesDo) {
    const auto first = ZRMBlockOperation::blockOperationWithBlock([] {});
    const auto waiting = ZRMBlockOperation::blockOperationWithBlock([] {});
    waiting->addDependency(first);
    waiting->cancel();
    EXPECT_TRUE(waiting->isReady());
}

TEST(ZRMOperation, LetsGoOfDependenciesObserversAndBlockOnceFinished) {
    const auto kept = std::make_shared<int>(0);
    auto dependency = ZRMBlockOperation::blockOperationWithBlock([] {});
    dependency->start();
    const std::weak_ptr<ZRMOperation> weakDependency = dependency;
    const auto operation = ZRMBlockOperation::blockOperationWithBlock([kept] {});
    operation->addDependency(std::move(dependency));
    operation->addChangeObserver([kept](const std::string&, bool) {});
    EXPECT_EQ(kept.use_count(), 3);
    operation->start();
    EXPECT_EQ(kept.use_count(), 1);
    EXPECT_TRUE(weakDependency.expired());
    EXPECT_THAT(operation->dependencies(), IsEmpty());
}

TEST(ZRMOperation, AnObserverMayAddAnotherOne) {
    const auto operation = ZRMBlockOperation::blockOperationWithBlock([] {});
    int calls = 0;
    bool added = false;
    operation->addChangeObserver([&](const std::string&, bool) {
        if (!std::exchange(added, true)) {
            operation->addChangeObserver([&](const std::string&, bool) { ++calls; });
        }
    });
    operation->start();
    EXPECT_EQ(calls, 5) << "of the six announcements it missed the one it was added in";
}

TEST(ZRMOperation, StaysAliveWhileItRunsThoughItsBlockDropsTheLastReference) {
    std::shared_ptr<ZRMOperation> operation;
    operation = ZRMBlockOperation::blockOperationWithBlock([&] { operation.reset(); });
    ZRMOperation* const raw = operation.get();
    const std::weak_ptr<ZRMOperation> weak = operation;
    raw->start();
    EXPECT_TRUE(weak.expired());
}

TEST(ZRMBlockOperation, RefusesAnEmptyBlock) {
    EXPECT_THROW(ZRMBlockOperation::blockOperationWithBlock(nullptr), ZRMInvalidArgument);
}

}  // namespace
