#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/RunLoop/ZRMRunLoop.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Timer/ZRMTimer.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

class ZRMRunLoopTest : public testing::Test {
  protected:
    std::shared_ptr<ZRMTimer> addTimer(double interval, bool repeats, std::function<void()> block) {
        auto timer = std::make_shared<ZRMTimer>(interval, repeats,
                                                ZRMBlockHolder::holderWithBlock(std::move(block)));
        loop_->addTimer(timer);
        return timer;
    }
    std::shared_ptr<ZRMTimer> addCounter(double interval, bool repeats) {
        return addTimer(interval, repeats, [this] { ++fired_; });
    }

    ZRMSimulatedDevice device_;
    const std::shared_ptr<ZRMExecutor> executor_ = device_.platform()->executor;
    std::shared_ptr<ZRMRunLoop> loop_ = std::make_shared<ZRMRunLoop>(
        executor_->makeSerialQueue("loop", ZRMQualityOfService::Default));
    int fired_ = 0;
};

TEST_F(ZRMRunLoopTest, TheMainLoopRunsOnTheMainQueue) {
    EXPECT_EQ(ZRMRunLoop::mainRunLoop(executor_)->queue(), executor_->mainQueue());
}

TEST_F(ZRMRunLoopTest, TheCurrentLoopOutsideAnyLoopIsTheMainOne) {
    EXPECT_EQ(ZRMRunLoop::currentRunLoop(executor_)->queue(), executor_->mainQueue());
}

TEST_F(ZRMRunLoopTest, TheCurrentLoopIsTheOneWhoseWorkRuns) {
    std::shared_ptr<ZRMRunLoop> current;
    std::shared_ptr<ZRMRunLoop> nested;
    std::shared_ptr<ZRMRunLoop> afterNested;
    const auto other = std::make_shared<ZRMRunLoop>(executor_->mainQueue());
    loop_->perform([&] {
        current = ZRMRunLoop::currentRunLoop(executor_);
        other->perform([&] { nested = ZRMRunLoop::currentRunLoop(executor_); });
        afterNested = ZRMRunLoop::currentRunLoop(executor_);
    });
    EXPECT_EQ(current, loop_);
    EXPECT_EQ(nested, other);
    EXPECT_EQ(afterNested, loop_);
    EXPECT_EQ(ZRMRunLoop::currentRunLoop(executor_)->queue(), executor_->mainQueue());
}

TEST_F(ZRMRunLoopTest, ATimerFiresAsWorkOfItsLoopOnItsQueue) {
    bool isOnQueue = false;
    std::shared_ptr<ZRMRunLoop> current;
    addTimer(1, false, [&] {
        isOnQueue = loop_->queue()->isCurrent();
        current = ZRMRunLoop::currentRunLoop(executor_);
    });
    device_.advanceBy(1);
    EXPECT_TRUE(isOnQueue);
    EXPECT_EQ(current, loop_);
}

TEST_F(ZRMRunLoopTest, AOneShotTimerFiresOnceAfterItsInterval) {
    const auto timer = addCounter(2, false);
    device_.advanceBy(1.9);
    EXPECT_EQ(fired_, 0);
    EXPECT_TRUE(timer->isValid());
    device_.advanceBy(10);
    EXPECT_EQ(fired_, 1);
    EXPECT_FALSE(timer->isValid());
}

TEST_F(ZRMRunLoopTest, ARepeatingTimerFiresUntilInvalidated) {
    const auto timer = addCounter(2, true);
    device_.advanceBy(6);
    EXPECT_EQ(fired_, 3);
    EXPECT_TRUE(timer->isValid());
    timer->invalidate();
    EXPECT_FALSE(timer->isValid());
    device_.advanceBy(6);
    EXPECT_EQ(fired_, 3);
}

TEST_F(ZRMRunLoopTest, ATimerMayInvalidateItself) {
    std::shared_ptr<ZRMTimer> timer;
    timer = addTimer(1, true, [&] {
        ++fired_;
        timer->invalidate();
    });
    device_.advanceBy(5);
    EXPECT_EQ(fired_, 1);
}

TEST_F(ZRMRunLoopTest, AnInvalidatedTimerNeverFires) {
    const auto before =
        std::make_shared<ZRMTimer>(1, false, ZRMBlockHolder::holderWithBlock([this] { ++fired_; }));
    before->invalidate();
    loop_->addTimer(before);
    addCounter(1, false)->invalidate();
    device_.advanceBy(5);
    EXPECT_EQ(fired_, 0);
}

TEST_F(ZRMRunLoopTest, AnIntervalOfZeroOrLessIsATenthOfAMillisecond) {
    EXPECT_EQ(addCounter(0, false)->timeIntervalSeconds(), 0.0001);
    EXPECT_EQ(addCounter(-1, true)->timeIntervalSeconds(), 0.0001);
    device_.advanceBy(0.0002);
    EXPECT_EQ(fired_, 3);
    loop_->end();
}

TEST_F(ZRMRunLoopTest, KeepsItsTimersAndLivesAsLongAsThereAreAny) {
    addCounter(2, false);
    std::weak_ptr<ZRMRunLoop> weak = loop_;
    loop_.reset();
    device_.advanceBy(1);
    EXPECT_FALSE(weak.expired());
    device_.advanceBy(1);
    EXPECT_EQ(fired_, 1);
    EXPECT_TRUE(weak.expired());
}

TEST_F(ZRMRunLoopTest, LetsGoOfATimerThatFiredForTheLastTimeOrWasInvalidated) {
    std::weak_ptr<ZRMTimer> fired = addCounter(1, false);
    std::weak_ptr<ZRMTimer> invalidated = addCounter(5, true);
    invalidated.lock()->invalidate();
    device_.advanceBy(1);
    EXPECT_TRUE(fired.expired());
    EXPECT_TRUE(invalidated.expired());
}

TEST_F(ZRMRunLoopTest, RunsNothingOnceEnded) {
    const auto repeating = addCounter(1, true);
    const auto oneShot = addCounter(1, false);
    EXPECT_FALSE(loop_->isEnded());
    loop_->end();
    EXPECT_TRUE(loop_->isEnded());
    EXPECT_FALSE(repeating->isValid());
    EXPECT_FALSE(oneShot->isValid());
    addCounter(1, false);
    device_.advanceBy(5);
    EXPECT_EQ(fired_, 0);
}

TEST_F(ZRMRunLoopTest, ATimerMayEndItsLoop) {
    addTimer(1, true, [this] {
        ++fired_;
        loop_->end();
    });
    addCounter(1.5, true);
    device_.advanceBy(5);
    EXPECT_EQ(fired_, 1);
}

}  // namespace
