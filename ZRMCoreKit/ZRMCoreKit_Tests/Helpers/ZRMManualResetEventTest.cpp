#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Helpers/ZRMManualResetEvent.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

using testing::InSequence;
using testing::Return;

class MockCondition : public ZRMCondition {
  public:
    MOCK_METHOD(void, lock, (), (override));
    MOCK_METHOD(void, unlock, (), (override));
    MOCK_METHOD(bool, waitUntil, (ZRMDate), (override));
    MOCK_METHOD(void, signal, (), (override));
};

class ZRMManualResetEventTest : public testing::Test {
  protected:
    [[nodiscard]] ZRMDate in(double seconds) const {
        return device_.platform()->clock->now().addingSeconds(seconds);
    }

    ZRMSimulatedDevice device_;
    const std::shared_ptr<ZRMManualResetEvent> event_ = ZRMManualResetEvent::manualResetEvent(
        *device_.platform()->executor, device_.platform()->clock);
    const std::shared_ptr<ZRMQueue> other_ =
        device_.platform()->executor->makeSerialQueue("other", ZRMQualityOfService::Default);
};

TEST_F(ZRMManualResetEventTest, IsNotSignaledAtFirst) {
    EXPECT_FALSE(event_->waitUntilDate(in(5)));
}

TEST_F(ZRMManualResetEventTest, WaitsUntilTheDeadlineWhenNobodyComes) {
    const auto deadline = in(5);
    EXPECT_FALSE(event_->waitUntilDate(deadline));
    EXPECT_EQ(device_.platform()->clock->now(), deadline);
}

TEST_F(ZRMManualResetEventTest, DoesNotWaitOnASignaledEvent) {
    const auto begin = device_.platform()->clock->now();
    event_->signal();
    EXPECT_TRUE(event_->waitUntilDate(in(5)));
    EXPECT_TRUE(event_->wait());
    EXPECT_EQ(device_.platform()->clock->now(), begin);
}

TEST_F(ZRMManualResetEventTest, IsWokenByASignal) {
    const auto wake = in(2);
    other_->postAfter(2, [this] { event_->signal(); });
    EXPECT_TRUE(event_->waitUntilDate(in(5)));
    EXPECT_EQ(device_.platform()->clock->now(), wake);
}

TEST_F(ZRMManualResetEventTest, IsWokenByAResetAsWell) {
    const auto wake = in(2);
    other_->postAfter(2, [this] { event_->reset(); });
    EXPECT_TRUE(event_->waitUntilDate(in(5)));
    EXPECT_EQ(device_.platform()->clock->now(), wake);
}

TEST_F(ZRMManualResetEventTest, AResetTakesTheSignalBack) {
    event_->signal();
    event_->reset();
    EXPECT_FALSE(event_->waitUntilDate(in(1)));
}

TEST_F(ZRMManualResetEventTest, WaitsAboutTenYears) {
    const auto end = in(315360000);
    EXPECT_FALSE(event_->wait());
    EXPECT_EQ(device_.platform()->clock->now(), end);
}

TEST_F(ZRMManualResetEventTest, SetsTheFlagAndWakesOneWaiterUnderTheLock) {
    auto condition = std::make_unique<MockCondition>();
    {
        const InSequence sequence;
        for (int round = 0; round < 2; ++round) {
            EXPECT_CALL(*condition, lock());
            EXPECT_CALL(*condition, signal());
            EXPECT_CALL(*condition, unlock());
        }
    }
    ZRMManualResetEvent event(std::move(condition), device_.platform()->clock);
    event.signal();
    event.reset();
}

TEST_F(ZRMManualResetEventTest, WaitsOnceAndBelievesTheWakeUp) {
    auto condition = std::make_unique<MockCondition>();
    {
        const InSequence sequence;
        EXPECT_CALL(*condition, lock());
        EXPECT_CALL(*condition, waitUntil(ZRMDate{7})).WillOnce(Return(true));
        EXPECT_CALL(*condition, unlock());
    }
    ZRMManualResetEvent event(std::move(condition), device_.platform()->clock);
    EXPECT_TRUE(event.waitUntilDate({7}));
}

}  // namespace
