#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSTimer/NSTimer+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/RunLoop/ZRMRunLoop.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

class NSTimerTest : public testing::Test {
  protected:
    ZRMSimulatedDevice device_;
    const std::shared_ptr<ZRMExecutor> executor_ = device_.platform()->executor;
    int calls_ = 0;
};

TEST_F(NSTimerTest, RunsOnTheMainLoopOutsideAnyLoop) {
    bool isOnMainQueue = false;
    zrm_scheduledTimerWithTimeInterval(
        executor_, 2, false, [&] { isOnMainQueue = executor_->mainQueue()->isCurrent(); });
    device_.advanceBy(2);
    EXPECT_TRUE(isOnMainQueue);
}

TEST_F(NSTimerTest, RunsOnTheLoopThatIsCurrent) {
    const auto loop = std::make_shared<ZRMRunLoop>(
        executor_->makeSerialQueue("loop", ZRMQualityOfService::Default));
    bool isOnLoop = false;
    loop->perform([&] {
        zrm_scheduledTimerWithTimeInterval(executor_, 2, false,
                                           [&] { isOnLoop = loop->queue()->isCurrent(); });
    });
    device_.advanceBy(2);
    EXPECT_TRUE(isOnLoop);
}

TEST_F(NSTimerTest, RepeatsWhenAskedToThoughNobodyHoldsIt) {
    std::weak_ptr<ZRMTimer> timer =
        zrm_scheduledTimerWithTimeInterval(executor_, 2, true, [this] { ++calls_; });
    device_.advanceBy(7);
    EXPECT_EQ(calls_, 3);
    timer.lock()->invalidate();
    device_.advanceBy(7);
    EXPECT_EQ(calls_, 3);
    EXPECT_TRUE(timer.expired());
}

TEST_F(NSTimerTest, CarriesTheBlockHolderInItsUserInfo) {
    const auto timer = zrm_scheduledTimerWithTimeInterval(executor_, 2, true, [this] { ++calls_; });
    ASSERT_EQ(timer->userInfo().size(), 1U);
    timer->userInfo().at("ZRMTimerBlockHolderKey")->invoke();
    EXPECT_EQ(calls_, 1);
    timer->invalidate();
}

TEST_F(NSTimerTest, RefusesAnEmptyCallback) {
    EXPECT_THROW(zrm_scheduledTimerWithTimeInterval(executor_, 2, false, nullptr),
                 ZRMInvalidArgument);
}

}  // namespace
