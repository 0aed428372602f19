// How what the host tells reaches its observers.
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMPlatform/HostFed/ZRMHostSignals.h"
#include "ZRMPlatform/HostFed_Tests/ZRMHeldQueue.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class ZRMHostSignalsTest : public testing::Test {
  protected:
    void ring(const std::string& uuid) { signals_.calls.update({.uuid = uuid}); }
    [[nodiscard]] std::shared_ptr<ZRMSubscription> hear() {
        return signals_.calls.observe(
            queue_, [this](const ZRMCall& call) { heard_.push_back(*call.uuid); });
    }

    ZRMHostSignals signals_;
    std::shared_ptr<ZRMHeldQueue> queue_ = std::make_shared<ZRMHeldQueue>();
    std::vector<std::string> heard_;
};

}  // namespace

TEST_F(ZRMHostSignalsTest, TheOneOfTheProcessIsAlwaysTheSame) {
    ASSERT_NE(ZRMHostSignals::shared(), nullptr);
    EXPECT_EQ(ZRMHostSignals::shared(), ZRMHostSignals::shared());
}

TEST_F(ZRMHostSignalsTest, ManyUpdatesCostOnePost) {
    const auto subscription = hear();
    for (const auto* uuid : {"A", "B", "C"}) {
        ring(uuid);
    }
    EXPECT_EQ(queue_->size(), 1u);
    queue_->runAll();
    EXPECT_THAT(heard_, ElementsAre("A", "B", "C"));
    ring("D");
    EXPECT_EQ(queue_->size(), 1u);
    queue_->runAll();
    EXPECT_THAT(heard_, ElementsAre("A", "B", "C", "D"));
}

TEST_F(ZRMHostSignalsTest, WhatIsFedDuringADeliveryComesInATaskOfItsOwn) {
    const auto subscription = signals_.calls.observe(queue_, [this](const ZRMCall& call) {
        heard_.push_back(*call.uuid);
        if (call.uuid == "A") {
            ring("B");
        }
    });
    ring("A");
    queue_->take()();
    EXPECT_THAT(heard_, ElementsAre("A"));
    EXPECT_EQ(queue_->size(), 1u);
    queue_->runAll();
    EXPECT_THAT(heard_, ElementsAre("A", "B"));
    EXPECT_EQ(queue_->size(), 0u);
}

TEST_F(ZRMHostSignalsTest, ATaskThatComesAfterItsSubscriptionDoesNothing) {
    auto subscription = hear();
    ring("A");
    subscription.reset();
    queue_->runAll();
    EXPECT_THAT(heard_, IsEmpty());
}

TEST_F(ZRMHostSignalsTest, ASubscriptionThatEndsDuringADeliveryHearsNoMore) {
    std::shared_ptr<ZRMSubscription> subscription;
    subscription = signals_.calls.observe(queue_, [&](const ZRMCall& call) {
        heard_.push_back(*call.uuid);
        subscription.reset();
    });
    ring("A");
    ring("B");
    queue_->runAll();
    EXPECT_THAT(heard_, ElementsAre("A"));
}

TEST_F(ZRMHostSignalsTest, NoMoreThanSoManyCallsAreUnderWay) {
    for (std::size_t number = 0; number < ZRMHostCalls::kMostCalls; ++number) {
        EXPECT_TRUE(signals_.calls.update({.uuid = std::to_string(number)}));
    }
    const auto subscription = hear();
    EXPECT_FALSE(signals_.calls.update({.uuid = "one too many"}));
    EXPECT_TRUE(signals_.calls.update({.uuid = "7", .hasConnected = true}));
    EXPECT_TRUE(signals_.calls.update({.uuid = "8", .hasEnded = true}));
    EXPECT_TRUE(signals_.calls.update({.uuid = "another"}));
    EXPECT_EQ(signals_.calls.calls().size(), ZRMHostCalls::kMostCalls);
    queue_->runAll();
    EXPECT_THAT(heard_, ElementsAre("7", "8", "another"));
}

TEST_F(ZRMHostSignalsTest, AFixIsWantedWhileSomebodyWaitsForIt) {
    EXPECT_FALSE(signals_.location.isWanted());
    auto subscription = signals_.location.observeUpdates(queue_, [](const auto&) {});
    EXPECT_TRUE(signals_.location.isWanted());
    subscription.reset();
    EXPECT_FALSE(signals_.location.isWanted());
}

TEST_F(ZRMHostSignalsTest, WithoutAWordNobodyWasAskedAndTheServicesAreOff) {
    EXPECT_EQ(signals_.location.status(), ZRMLocationAuthorizationNotDetermined);
    EXPECT_FALSE(signals_.location.areServicesEnabled());
}

TEST(ZRMHostMailbox, WhatWasDeliveredOrCannotBeAnyMoreIsFreed) {
    const auto value = std::make_shared<int>(1);
    const auto queue = std::make_shared<ZRMHeldQueue>();
    int sum = 0;
    ZRMHostObservers<std::shared_ptr<int>> observers;
    auto subscription = observers.add(queue, [&sum](const auto& number) { sum += *number; });
    const auto tell = [&](int times) {
        for (int time = 0; time < times; ++time) {
            ZRMHostObservers<std::shared_ptr<int>>::Delivery delivery;
            observers.put(value, delivery);
            delivery.post();
        }
    };
    tell(10000);
    EXPECT_EQ(value.use_count(), 10001);
    queue->runAll();
    EXPECT_EQ(sum, 10000);
    EXPECT_EQ(value.use_count(), 1);
    tell(10000);
    subscription.reset();
    EXPECT_EQ(value.use_count(), 1);
    tell(1);
    queue->runAll();
    EXPECT_EQ(sum, 10000);
    EXPECT_EQ(value.use_count(), 1);
    EXPECT_TRUE(observers.isEmpty());
}

TEST(ZRMHostWord, KeepsTheLastWordUntilItIsTakenBack) {
    ZRMHostWord<std::string> word;
    EXPECT_EQ(word.word(), std::nullopt);
    word.tell("one");
    word.tell("two");
    EXPECT_EQ(word.word(), "two");
    word.forget();
    EXPECT_EQ(word.word(), std::nullopt);
}
