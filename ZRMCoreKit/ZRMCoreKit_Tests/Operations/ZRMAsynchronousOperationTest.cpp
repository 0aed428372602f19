#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMAsynchronousOperation.h"

namespace {

using testing::ElementsAre;
using State = ZRMAsynchronousOperationState;

class RecordingConsole final : public ZRMConsoleLog {
  public:
    void write(std::string_view text) override { writes.emplace_back(text); }
    std::vector<std::string> writes;
};

class OpenEndedOperation : public ZRMAsynchronousOperation {
  public:
    OpenEndedOperation() : ZRMAsynchronousOperation(nullptr) {}
    void execute() override {
        ++executions;
        stateInExecute = state();
    }
    using ZRMAsynchronousOperation::finish;

    int executions = 0;
    State stateInExecute = State::Ready;
};

std::shared_ptr<std::vector<std::string>> recordChanges(ZRMOperation& operation) {
    auto changes = std::make_shared<std::vector<std::string>>();
    operation.addChangeObserver([changes, &operation](const std::string& key, bool isPrior) {
        changes->push_back((isPrior ? "will " : "did ") + key +
                           (operation.isExecuting()  ? " 1"
                            : operation.isFinished() ? " 2"
                                                     : " 0"));
    });
    return changes;
}

TEST(ZRMAsynchronousOperation, IsReadyAtFirst) {
    const auto operation = std::make_shared<OpenEndedOperation>();
    EXPECT_EQ(operation->state(), State::Ready);
    EXPECT_FALSE(operation->isExecuting());
    EXPECT_FALSE(operation->isFinished());
    EXPECT_TRUE(operation->isAsynchronous());
}

TEST(ZRMAsynchronousOperation, StaysExecutingAfterStartUntilItFinishes) {
    const auto operation = std::make_shared<OpenEndedOperation>();
    operation->start();
    EXPECT_EQ(operation->executions, 1);
    EXPECT_EQ(operation->stateInExecute, State::Executing);
    EXPECT_TRUE(operation->isExecuting());
    EXPECT_FALSE(operation->isFinished());
    operation->finish();
    EXPECT_FALSE(operation->isExecuting());
    EXPECT_TRUE(operation->isFinished());
}

TEST(ZRMAsynchronousOperation, AnnouncesEachChangeAroundIt) {
    const auto operation = std::make_shared<OpenEndedOperation>();
    const auto changes = recordChanges(*operation);
    operation->start();
    EXPECT_THAT(*changes, ElementsAre("will isExecuting 0", "did isExecuting 1"));
    changes->clear();
    operation->finish();
    EXPECT_THAT(*changes, ElementsAre("will isExecuting 1", "will isFinished 1",
                                      "did isExecuting 2", "did isFinished 2"));
}

TEST(ZRMAsynchronousOperation, FinishesWithoutExecutingWhenCancelledBefore) {
    const auto operation = std::make_shared<OpenEndedOperation>();
    operation->cancel();
    EXPECT_EQ(operation->state(), State::Ready);
    operation->start();
    EXPECT_EQ(operation->executions, 0);
    EXPECT_EQ(operation->state(), State::Finished);
}

TEST(ZRMAsynchronousOperation, FinishesWithoutExecutingWhenCancelledWhileItAnnouncesItsStart) {
    const auto operation = std::make_shared<OpenEndedOperation>();
    operation->addChangeObserver([&](const std::string& key, bool isPrior) {
        if (key == "isExecuting" && isPrior) {
            operation->cancel();
        }
    });
    operation->start();
    EXPECT_EQ(operation->executions, 0);
    EXPECT_TRUE(operation->isFinished());
}

TEST(ZRMAsynchronousOperation, CancelAloneDoesNotFinishIt) {
    const auto operation = std::make_shared<OpenEndedOperation>();
    operation->start();
    operation->cancel();
    EXPECT_TRUE(operation->isCancelled());
    EXPECT_TRUE(operation->isExecuting());
}

TEST(ZRMAsynchronousOperation, OnlyTheFirstStartAndTheFirstFinishCount) {
    const auto operation = std::make_shared<OpenEndedOperation>();
    operation->start();
    operation->start();
    EXPECT_EQ(operation->executions, 1);
    operation->finish();
    const auto changes = recordChanges(*operation);
    operation->finish();
    EXPECT_TRUE(changes->empty());
    operation->start();
    EXPECT_EQ(operation->executions, 1);
}

TEST(ZRMAsynchronousOperation, NeverExecutesOnceFinished) {
    const auto operation = std::make_shared<OpenEndedOperation>();
    operation->finish();
    operation->start();
    EXPECT_EQ(operation->executions, 0);
    EXPECT_EQ(operation->state(), State::Finished);
}

TEST(ZRMAsynchronousOperation, BaseExecuteComplainsOnTheConsoleAndFinishes) {
    const auto console = std::make_shared<RecordingConsole>();
    const auto operation = std::make_shared<ZRMAsynchronousOperation>(console);
    operation->start();
    EXPECT_TRUE(operation->isFinished());
    EXPECT_THAT(console->writes,
                ElementsAre("Method -execute should be overriden by the subclass\n", "\n"));
}

TEST(ZRMAsynchronousOperation, StatesHaveTheirNumbers) {
    EXPECT_EQ(static_cast<int>(State::Ready), 0);
    EXPECT_EQ(static_cast<int>(State::Executing), 1);
    EXPECT_EQ(static_cast<int>(State::Finished), 2);
}

}  // namespace
