#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSRunLoop/NSRunLoop+ZRMCoreKit.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

using testing::ElementsAre;

class NSRunLoopTest : public testing::Test {
  protected:
    std::function<bool()> answeringTrueAt(int callNumber) {
        return [this, callNumber] {
            const auto now = device_.platform()->clock->now();
            askedAfter_.push_back(now.secondsSince(begin_));
            return static_cast<int>(askedAfter_.size()) >= callNumber;
        };
    }

    ZRMSimulatedDevice device_;
    ZRMExecutor& executor_ = *device_.platform()->executor;
    const ZRMDate begin_ = device_.platform()->clock->now();
    std::vector<double> askedAfter_;
};

TEST_F(NSRunLoopTest, MapsEachQualityOfServiceToItsQueueClass) {
    const auto number = [](int qualityOfService) {
        return static_cast<unsigned>(
            zrm_qosClassForQualityOfService(static_cast<ZRMQualityOfService>(qualityOfService)));
    };
    EXPECT_EQ(number(33), 0x21U);
    EXPECT_EQ(number(25), 0x19U);
    EXPECT_EQ(number(17), 0x11U);
    EXPECT_EQ(number(9), 0x09U);
    EXPECT_EQ(number(-1), 0x15U);
    EXPECT_EQ(number(0), 0x15U) << "a number that is none gets the default class";
}

TEST_F(NSRunLoopTest, AsksAtOnceAndThenEveryHalfSecondUntilTheFirstYes) {
    const auto loop = zrm_startAsyncRunLoopForMode(
        executor_, ZRMRunLoopMode::Default, ZRMQualityOfService::UserInitiated, answeringTrueAt(4));
    EXPECT_THAT(askedAfter_, ElementsAre());
    device_.advanceBy(1.4);
    EXPECT_FALSE(loop->isEnded());
    device_.advanceBy(10);
    EXPECT_THAT(askedAfter_, ElementsAre(0, 0.5, 1, 1.5));
    EXPECT_TRUE(loop->isEnded());
}

TEST_F(NSRunLoopTest, AYesAtTheFirstQuestionEndsTheLoopAtOnce) {
    const auto loop = zrm_startAsyncRunLoopForMode(executor_, ZRMRunLoopMode::Default,
                                                   ZRMQosClass::Utility, answeringTrueAt(1));
    device_.runUntilIdle();
    EXPECT_TRUE(loop->isEnded());
    EXPECT_THAT(askedAfter_, ElementsAre(0));
}

TEST_F(NSRunLoopTest, AsksAsWorkOfTheLoop) {
    bool isOnQueue = false;
    std::shared_ptr<ZRMRunLoop> current;
    std::shared_ptr<ZRMRunLoop> loop;
    loop = zrm_startAsyncRunLoopForMode(
        executor_, ZRMRunLoopMode::Default, ZRMQualityOfService::Default, [&] {
            isOnQueue = loop->queue()->isCurrent();
            current = ZRMRunLoop::currentRunLoop(device_.platform()->executor);
            return true;
        });
    device_.runUntilIdle();
    EXPECT_TRUE(isOnQueue);
    EXPECT_EQ(current, loop);
}

TEST_F(NSRunLoopTest, TheLoopLivesUntilTheYesThoughNobodyHoldsIt) {
    std::weak_ptr<ZRMRunLoop> weak = zrm_startAsyncRunLoopForMode(
        executor_, ZRMRunLoopMode::Default, ZRMQualityOfService::Default, answeringTrueAt(3));
    device_.advanceBy(0.9);
    EXPECT_FALSE(weak.expired());
    device_.advanceBy(0.1);
    EXPECT_TRUE(weak.expired());
}

TEST_F(NSRunLoopTest, AMissingCallbackIsRefused) {
    try {
        zrm_startAsyncRunLoopForMode(executor_, ZRMRunLoopMode::Default,
                                     ZRMQualityOfService::Default, nullptr);
        FAIL() << "nothing was thrown";
    } catch (const ZRMInvalidArgument& refusal) {
        EXPECT_STREQ(refusal.what(), "Invalid parameter not satisfying: callback");
    }
}

}  // namespace
