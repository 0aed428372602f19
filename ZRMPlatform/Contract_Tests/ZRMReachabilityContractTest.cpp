// What ZRMReachabilityTarget.h promises whatever the network is like.
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

}  // namespace

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
