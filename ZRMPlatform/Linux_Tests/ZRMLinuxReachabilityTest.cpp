#include <map>

#include <gtest/gtest.h>

#include "ZRMPlatform/Linux/ZRMLinuxExecutor.h"
#include "ZRMPlatform/Linux/ZRMLinuxReachability.h"
#include "ZRMPlatform/Linux_Tests/ZRMLinuxRouteStubs.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestWaiting.h"

namespace {

class ZRMLinuxReachabilityTest : public testing::Test {
  protected:
    void SetUp() override {
        directory_.writeFile("wlan0/ifindex", std::to_string(kZRMStubWifi));
        directory_.writeFile("wwan0/ifindex", std::to_string(kZRMStubModem));
    }
    ZRMLinuxReachabilityTargets targets(const std::vector<std::string>& overrides = {}) {
        return {routes_, changes_, ZRMLinuxInterfaces(directory_.path()),
                zrm_parseResolveOverrides(overrides)};
    }
    std::shared_ptr<ZRMReachabilityTarget> internet() {
        return targets().targetForAddress({16, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
    }
    // Returns once what was posted to the queue so far has run.
    void drain() {
        ZRMAwaited<bool> drained;
        queue_->post([&] { drained.set(true); });
        ASSERT_TRUE(drained.waitUntil([](bool held) { return held; }));
    }

    ZRMTestDirectory directory_;
    std::shared_ptr<ZRMStubRoutes> routes_ = std::make_shared<ZRMStubRoutes>();
    std::shared_ptr<ZRMStubRouteChanges> changes_ = std::make_shared<ZRMStubRouteChanges>();
    std::shared_ptr<ZRMQueue> queue_ =
        ZRMLinuxExecutor().makeSerialQueue("test", ZRMQualityOfService::Default);
};

}  // namespace

TEST_F(ZRMLinuxReachabilityTest, TheInternetIsReachableByADefaultRoute) {
    routes_->set(0, kZRMStubWifi);
    EXPECT_EQ(internet()->flags(), 0x2U);
    routes_->set(kZRMStubWifi, 0);
    EXPECT_EQ(internet()->flags(), 0U);
    routes_->set(kZRMStubWifi, std::nullopt);
    EXPECT_EQ(internet()->flags(), std::nullopt);
}

TEST_F(ZRMLinuxReachabilityTest, AModemsInterfaceIsCellular) {
    routes_->set(kZRMStubModem, kZRMStubModem);
    EXPECT_EQ(internet()->flags(), 0x40002U);
    EXPECT_EQ(targets().targetForHost("192.0.2.1")->flags(), 0x40002U);
}

TEST_F(ZRMLinuxReachabilityTest, AnAddressIsReachableByARouteToIt) {
    routes_->set(kZRMStubWifi, 0);
    const auto v4 =
        targets().targetForAddress({16, 2, 1, 187, 192, 0, 2, 7, 0, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(v4->flags(), 0x2U);
    EXPECT_EQ(routes_->lastAsked(), ZRMLinuxIpAddress::fromText("192.0.2.7"));
    ZRMSocketAddress bytes(28);
    bytes[0] = 28;
    bytes[1] = 30;
    bytes[8] = 0x20;
    bytes[9] = 0x01;
    bytes[23] = 9;
    EXPECT_EQ(targets().targetForAddress(bytes)->flags(), 0x2U);
    EXPECT_EQ(routes_->lastAsked(), ZRMLinuxIpAddress::fromText("2001::9"));
}

TEST_F(ZRMLinuxReachabilityTest, TheUnspecifiedIpv6AddressIsTheInternetToo) {
    routes_->set(0, kZRMStubWifi);
    ZRMSocketAddress bytes(28);
    bytes[0] = 28;
    bytes[1] = 30;
    EXPECT_EQ(targets().targetForAddress(bytes)->flags(), 0x2U);
}

TEST_F(ZRMLinuxReachabilityTest, AnAddressOfAnotherFormHasNoTarget) {
    for (const auto& bytes : {ZRMSocketAddress{}, ZRMSocketAddress{16}, ZRMSocketAddress{16, 2},
                              ZRMSocketAddress(16, 0),
                              ZRMSocketAddress{17, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
                              ZRMSocketAddress{15, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0},
                              ZRMSocketAddress{16, 30, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}}) {
        EXPECT_EQ(targets().targetForAddress(bytes), nullptr);
    }
}

TEST_F(ZRMLinuxReachabilityTest, ANameCountsAsReachableByADefaultRoute) {
    routes_->set(0, kZRMStubWifi);
    EXPECT_EQ(targets().targetForHost("risk.example.test")->flags(), 0x2U);
    EXPECT_EQ(routes_->lastAsked(), std::nullopt);
    routes_->set(kZRMStubWifi, 0);
    EXPECT_EQ(targets().targetForHost("risk.example.test")->flags(), 0U);
}

TEST_F(ZRMLinuxReachabilityTest, ANameWithAnOverrideOrAnAddressIsAskedByAddress) {
    routes_->set(kZRMStubWifi, 0);
    const std::map<std::string, std::string> expected = {{"Risk.Example.test", "192.0.2.1"},
                                                         {"localhost", "127.0.0.1"},
                                                         {"LocalHost", "127.0.0.1"},
                                                         {"198.51.100.3", "198.51.100.3"},
                                                         {"2001:db8::3", "2001:db8::3"}};
    for (const auto& [name, address] : expected) {
        const auto target = targets({"risk.example.test:443:192.0.2.1"}).targetForHost(name);
        EXPECT_EQ(target->flags(), 0x2U) << name;
        EXPECT_EQ(routes_->lastAsked(), ZRMLinuxIpAddress::fromText(address)) << name;
    }
}

TEST_F(ZRMLinuxReachabilityTest, ANameThatIsNoneHasNoTarget) {
    EXPECT_EQ(targets().targetForHost(""), nullptr);
    EXPECT_EQ(targets().targetForHost(std::string("a\0b", 3)), nullptr);
}

TEST_F(ZRMLinuxReachabilityTest, OnlyAChangeOfTheFlagsIsDeliveredAndOnTheQueue) {
    const auto target = internet();
    std::vector<std::uint32_t> told;
    bool isOnQueue = true;
    ASSERT_TRUE(target->setCallback([&](std::uint32_t flags) {
        told.push_back(flags);
        isOnQueue = isOnQueue && queue_->isCurrent();
    }));
    ASSERT_TRUE(target->schedule(queue_));
    changes_->announce();
    routes_->set(0, 0);
    changes_->announce();
    changes_->announce();
    routes_->set(kZRMStubModem, kZRMStubModem);
    changes_->announce();
    drain();
    EXPECT_EQ(told, (std::vector<std::uint32_t>{0, 0x40002}));
    EXPECT_TRUE(isOnQueue);
}

TEST_F(ZRMLinuxReachabilityTest, FlagsThatCanNoLongerBeReadAreDeliveredAsNone) {
    const auto target = internet();
    std::vector<std::uint32_t> told;
    target->setCallback([&](std::uint32_t flags) { told.push_back(flags); });
    target->schedule(queue_);
    routes_->set(std::nullopt, std::nullopt);
    changes_->announce();
    drain();
    EXPECT_EQ(told, std::vector<std::uint32_t>{0});
}

TEST_F(ZRMLinuxReachabilityTest, AfterUnschedulingOnTheQueueNothingFollows) {
    const auto target = internet();
    int told = 0;
    target->setCallback([&](std::uint32_t) { ++told; });
    target->schedule(queue_);
    EXPECT_TRUE(target->schedule(queue_));  // again: still delivered once
    queue_->post([&] {
        routes_->set(0, 0);
        changes_->announce();  // posts a delivery behind this task
        EXPECT_TRUE(target->unschedule(queue_));
        EXPECT_FALSE(target->unschedule(queue_));
    });
    drain();
    drain();
    EXPECT_EQ(told, 0);
}

TEST_F(ZRMLinuxReachabilityTest, ACallbackThatIsReplacedOrRemovedIsNotCalled) {
    const auto target = internet();
    int first = 0;
    int second = 0;
    target->setCallback([&](std::uint32_t) { ++first; });
    target->schedule(queue_);
    target->setCallback([&](std::uint32_t) { ++second; });
    routes_->set(0, 0);
    changes_->announce();
    drain();
    target->setCallback({});
    routes_->set(kZRMStubWifi, kZRMStubWifi);
    changes_->announce();
    drain();
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
}

TEST_F(ZRMLinuxReachabilityTest, ATargetThatIsGoneIsNotCalled) {
    auto target = internet();
    int told = 0;
    target->setCallback([&](std::uint32_t) { ++told; });
    target->schedule(queue_);
    queue_->post([&] {
        routes_->set(0, 0);
        changes_->announce();
        target.reset();
    });
    drain();
    drain();
    EXPECT_EQ(told, 0);
}

TEST_F(ZRMLinuxReachabilityTest, SchedulingWithoutAQueueOrWithoutWordOfChangesFails) {
    EXPECT_FALSE(internet()->schedule(nullptr));
    changes_->isWatching = false;
    EXPECT_FALSE(internet()->schedule(queue_));
}

TEST(ZRMLinuxKernelRouteChanges, TheLoopbackIsReachableOnTheRealMachine) {
    ZRMLinuxReachabilityTargets targets(std::make_shared<ZRMLinuxKernelRoutes>(),
                                        ZRMLinuxKernelRouteChanges::shared(), ZRMLinuxInterfaces(),
                                        {});
    const auto target = targets.targetForHost("localhost");
    EXPECT_EQ(target->flags(), 0x2U);
    const auto queue = ZRMLinuxExecutor().makeSerialQueue("test", ZRMQualityOfService::Default);
    EXPECT_TRUE(target->schedule(queue));
    EXPECT_TRUE(target->unschedule(queue));
}
