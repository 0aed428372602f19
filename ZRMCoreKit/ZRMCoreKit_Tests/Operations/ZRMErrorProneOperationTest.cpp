#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMErrorProneOperation.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FallibleOperation : public ZRMErrorProneOperation {
  public:
    FallibleOperation() : ZRMErrorProneOperation(nullptr) {}
    void execute() override {}
    using ZRMErrorProneOperation::finishWithError;
};

const ZRMError kError("domain", 7);

TEST(ZRMErrorProneOperation, HasNoErrorAtFirst) {
    EXPECT_FALSE(std::make_shared<FallibleOperation>()->error());
}

TEST(ZRMErrorProneOperation, KeepsTheErrorItFinishedWith) {
    const auto operation = std::make_shared<FallibleOperation>();
    operation->start();
    operation->finishWithError(kError);
    EXPECT_TRUE(operation->isFinished());
    EXPECT_EQ(operation->error(), kError);
}

TEST(ZRMErrorProneOperation, FinishesWithoutAnError) {
    const auto operation = std::make_shared<FallibleOperation>();
    operation->start();
    operation->finishWithError(std::nullopt);
    EXPECT_TRUE(operation->isFinished());
    EXPECT_FALSE(operation->error());
}

TEST(ZRMErrorProneOperation, AnnouncesTheErrorBeforeItFinishes) {
    const auto operation = std::make_shared<FallibleOperation>();
    operation->start();
    std::vector<std::string> changes;
    operation->addChangeObserver([&](const std::string& key, bool isPrior) {
        changes.push_back((isPrior ? "will " : "did ") + key + (operation->error() ? " set" : ""));
    });
    operation->finishWithError(kError);
    EXPECT_THAT(changes,
                ElementsAre("will error", "did error set", "will isExecuting set",
                            "will isFinished set", "did isExecuting set", "did isFinished set"));
}

TEST(ZRMErrorProneOperation, DropsTheErrorWhenItIsNotExecuting) {
    const auto operation = std::make_shared<FallibleOperation>();
    operation->finishWithError(kError);
    EXPECT_FALSE(operation->error());
    EXPECT_FALSE(operation->isFinished());

    operation->start();
    operation->finishWithError(std::nullopt);
    operation->finishWithError(kError);
    EXPECT_FALSE(operation->error());
}

TEST(ZRMErrorProneOperation, CancelFinishesWhatExecutesWithoutAnError) {
    const auto operation = std::make_shared<FallibleOperation>();
    operation->start();
    operation->cancel();
    EXPECT_TRUE(operation->isCancelled());
    EXPECT_TRUE(operation->isFinished());
    operation->finishWithError(kError);
    EXPECT_FALSE(operation->error());
}

TEST(ZRMErrorProneOperation, CancelBeforeTheStartLeavesTheFinishToTheStart) {
    const auto operation = std::make_shared<FallibleOperation>();
    operation->cancel();
    EXPECT_FALSE(operation->isFinished());
    operation->start();
    EXPECT_TRUE(operation->isFinished());
}

TEST(ZRMErrorProneOperation, CancelOnceFinishedChangesNothing) {
    const auto operation = std::make_shared<FallibleOperation>();
    operation->start();
    operation->finishWithError(kError);
    std::vector<std::string> changes;
    operation->addChangeObserver([&](const std::string& key, bool) { changes.push_back(key); });
    operation->cancel();
    EXPECT_THAT(changes, IsEmpty());
    EXPECT_EQ(operation->error(), kError);
}

TEST(ZRMErrorProneOperation, ACancelInTheMidstOfTheErrorsAnnouncementLetsTheErrorStand) {
    const auto operation = std::make_shared<FallibleOperation>();
    operation->start();
    int finishes = 0;
    operation->addChangeObserver([&](const std::string& key, bool isPrior) {
        if (key == "error" && isPrior) {
            operation->cancel();
        }
        finishes += key == "isFinished" && !isPrior ? 1 : 0;
    });
    operation->finishWithError(kError);
    EXPECT_EQ(operation->error(), kError);
    EXPECT_EQ(finishes, 1);
}

}  // namespace
