// What ZRMReachabilityTarget.h promises.
#include <gmock/gmock.h>

#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"

namespace {

class ZRMReachabilityContract : public ZRMContract {
  protected:
    [[nodiscard]] ZRMReachabilityTargets& targets() { return *platform()->reachabilityTargets; }
    static ZRMSocketAddress address(std::uint8_t family, std::size_t size) {
        ZRMSocketAddress bytes(size);
        bytes[0] = static_cast<std::uint8_t>(size);
        bytes[1] = family;
        return bytes;
    }
};

constexpr std::uint32_t kCellular = ZRMReachabilityReachable | ZRMReachabilityIsCellular;

class ZRMReachabilityChangesContract : public ZRMContract {
  protected:
    // Notes the flags it is called with.
    [[nodiscard]] ZRMReachabilityTarget::Callback noteFlags(const std::string& prefix = "") {
        return [notes = notes_, prefix](std::uint32_t flags) {
            notes->add(prefix + std::to_string(flags));
        };
    }
    bool waitForEnd() { return waitForEndOf(*queue_); }
    static std::string text(std::uint32_t flags) { return std::to_string(flags); }

    std::shared_ptr<ZRMReachabilityTargets> targets_ = body_->changeableTargets();
    std::shared_ptr<ZRMReachabilityTarget> target_ = targets_->targetForHost("risk.example.com");
    std::shared_ptr<ZRMQueue> queue_ = serialQueue();
};

}  // namespace

TEST_P(ZRMReachabilityChangesContract, FlagsAreThoseOfTheMoment) {
    EXPECT_EQ(target_->flags(), ZRMReachabilityReachable);
    body_->setFlags(kCellular);
    EXPECT_EQ(target_->flags(), kCellular);
    body_->setFlags(0);
    EXPECT_EQ(target_->flags(), 0u);
}

TEST_P(ZRMReachabilityChangesContract, FlagsThatCannotBeReadAreAbsent) {
    body_->setFlags(std::nullopt);
    EXPECT_FALSE(target_->flags());
}

TEST_P(ZRMReachabilityChangesContract, DeliversChangesToTheCallbackOnTheQueue) {
    target_->setCallback([queue = queue_, notes = notes_](std::uint32_t flags) {
        notes->add(text(flags) + (queue->isCurrent() ? " on queue" : " elsewhere"));
    });
    ASSERT_TRUE(target_->schedule(queue_));
    body_->setFlags(0);
    ASSERT_TRUE(waitForNotes(1));
    body_->setFlags(kCellular);
    ASSERT_TRUE(waitForNotes(2));
    EXPECT_THAT(notes(), testing::ElementsAre("0 on queue", text(kCellular) + " on queue"));
}

TEST_P(ZRMReachabilityChangesContract, WithoutAChangeNothingIsDelivered) {
    target_->setCallback(noteFlags());
    ASSERT_TRUE(target_->schedule(queue_));
    body_->setFlags(ZRMReachabilityReachable);
    ASSERT_TRUE(waitForEnd());
    EXPECT_THAT(notes(), testing::ElementsAre("end"));
}

TEST_P(ZRMReachabilityChangesContract, WithoutAQueueNothingIsDelivered) {
    target_->setCallback(noteFlags());
    body_->setFlags(0);
    ASSERT_TRUE(target_->schedule(queue_));
    ASSERT_TRUE(waitForEnd());
    EXPECT_THAT(notes(), testing::ElementsAre("end"));
}

TEST_P(ZRMReachabilityChangesContract, ScheduledTwiceOnAQueueItDeliversOnce) {
    target_->setCallback(noteFlags());
    ASSERT_TRUE(target_->schedule(queue_));
    ASSERT_TRUE(target_->schedule(queue_));
    body_->setFlags(0);
    ASSERT_TRUE(waitForEnd());
    EXPECT_THAT(notes(), testing::ElementsAre("0", "end"));
}

TEST_P(ZRMReachabilityChangesContract, ANewCallbackReplacesTheOneBefore) {
    target_->setCallback(noteFlags("old "));
    ASSERT_TRUE(target_->schedule(queue_));
    target_->setCallback(noteFlags("new "));
    body_->setFlags(0);
    ASSERT_TRUE(waitForEnd());
    EXPECT_THAT(notes(), testing::ElementsAre("new 0", "end"));
}

TEST_P(ZRMReachabilityChangesContract, AnEmptyCallbackRemovesIt) {
    target_->setCallback(noteFlags());
    ASSERT_TRUE(target_->schedule(queue_));
    target_->setCallback({});
    body_->setFlags(0);
    ASSERT_TRUE(waitForEnd());
    EXPECT_THAT(notes(), testing::ElementsAre("end"));
}

TEST_P(ZRMReachabilityChangesContract, UnscheduledOnTheQueueItselfNothingFollows) {
    target_->setCallback(noteFlags());
    ASSERT_TRUE(target_->schedule(queue_));
    queue_->post([this, target = target_, queue = queue_] {
        body_->setFlags(0);
        target->unschedule(queue);
    });
    ASSERT_TRUE(waitForEnd());
    EXPECT_THAT(notes(), testing::ElementsAre("end"));
}

TEST_P(ZRMReachabilityChangesContract, ADroppedTargetDeliversNothing) {
    target_->setCallback(noteFlags());
    ASSERT_TRUE(target_->schedule(queue_));
    target_.reset();
    body_->setFlags(0);
    ASSERT_TRUE(waitForEnd());
    EXPECT_THAT(notes(), testing::ElementsAre("end"));
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMReachabilityChangesContract, zrm_contractBodies(),
                         zrm_contractBodyName);

TEST_P(ZRMReachabilityContract, MakesTargetsForHostsAndAddresses) {
    EXPECT_NE(targets().targetForHost("risk.example.com"), nullptr);
    EXPECT_NE(targets().targetForHost("127.0.0.1"), nullptr);
    EXPECT_NE(targets().targetForAddress(address(2, 16)), nullptr);
    EXPECT_NE(targets().targetForAddress(address(30, 28)), nullptr);
}

TEST_P(ZRMReachabilityContract, WhatNamesNoPeerHasNoTarget) {
    EXPECT_EQ(targets().targetForHost(""), nullptr);
    EXPECT_EQ(targets().targetForHost(std::string("a\0b", 3)), nullptr);
    EXPECT_EQ(targets().targetForAddress({}), nullptr);
    EXPECT_EQ(targets().targetForAddress({1}), nullptr);
    EXPECT_EQ(targets().targetForAddress(address(99, 16)), nullptr);
    EXPECT_EQ(targets().targetForAddress(address(2, 8)), nullptr);
    EXPECT_EQ(targets().targetForAddress(address(30, 16)), nullptr);
}

TEST_P(ZRMReachabilityContract, ThisMachineIsReachable) {
    const auto target = targets().targetForHost("127.0.0.1");
    ASSERT_NE(target, nullptr);
    const auto flags = target->flags();
    ASSERT_TRUE(flags);
    EXPECT_NE(*flags & ZRMReachabilityReachable, 0u);
    EXPECT_EQ(*flags & ZRMReachabilityIsCellular, 0u);
}

TEST_P(ZRMReachabilityContract, TakesAndRemovesACallback) {
    const auto target = targets().targetForHost("127.0.0.1");
    EXPECT_TRUE(target->setCallback([](std::uint32_t) {}));
    EXPECT_TRUE(target->setCallback([](std::uint32_t) {}));
    EXPECT_TRUE(target->setCallback({}));
}

TEST_P(ZRMReachabilityContract, LetsGoOfACallbackThatIsReplaced) {
    const auto owned = std::make_shared<int>(0);
    const auto target = targets().targetForHost("127.0.0.1");
    target->setCallback([owned](std::uint32_t) {});
    target->setCallback({});
    EXPECT_EQ(owned.use_count(), 1);
}

TEST_P(ZRMReachabilityContract, IsScheduledOnAQueueAndTakenOffIt) {
    const auto queue = serialQueue();
    const auto target = targets().targetForHost("127.0.0.1");
    EXPECT_TRUE(target->schedule(queue));
    EXPECT_TRUE(target->unschedule(queue));
}

TEST_P(ZRMReachabilityContract, IsNotScheduledOnNoQueue) {
    EXPECT_FALSE(targets().targetForHost("127.0.0.1")->schedule(nullptr));
}

TEST_P(ZRMReachabilityContract, TakingItOffAQueueItIsNotOnFails) {
    EXPECT_FALSE(targets().targetForHost("127.0.0.1")->unschedule(serialQueue()));
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMReachabilityContract, zrm_contractBodies(),
                         zrm_contractBodyName);
