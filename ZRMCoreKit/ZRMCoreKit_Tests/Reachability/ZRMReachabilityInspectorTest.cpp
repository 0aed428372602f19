#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Reachability/ZRMReachabilityInspector.h"
#include "ZRMPlatform/Ports/Values/ZRMError.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

using testing::_;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::NiceMock;
using testing::Return;

constexpr std::uint32_t kReachable = 0x2;
constexpr std::uint32_t kRequired = 0x4;
constexpr std::uint32_t kOnTraffic = 0x8;
constexpr std::uint32_t kIntervention = 0x10;
constexpr std::uint32_t kOnDemand = 0x20;
constexpr std::uint32_t kCellular = 0x40000;

class MockTarget : public ZRMReachabilityTarget {
  public:
    MockTarget() {
        ON_CALL(*this, setCallback).WillByDefault([this](Callback theCallback) {
            callback = std::move(theCallback);
            return true;
        });
        ON_CALL(*this, schedule).WillByDefault(Return(true));
        ON_CALL(*this, unschedule).WillByDefault(Return(true));
    }
    MOCK_METHOD(std::optional<std::uint32_t>, flags, (), (const, override));
    MOCK_METHOD(bool, setCallback, (Callback), (override));
    MOCK_METHOD(bool, schedule, (const std::shared_ptr<ZRMQueue>&), (override));
    MOCK_METHOD(bool, unschedule, (const std::shared_ptr<ZRMQueue>&), (override));

    Callback callback;
};

class MockTargets : public ZRMReachabilityTargets {
  public:
    MOCK_METHOD(std::shared_ptr<ZRMReachabilityTarget>, targetForHost, (const std::string&),
                (override));
    MOCK_METHOD(std::shared_ptr<ZRMReachabilityTarget>, targetForAddress, (const ZRMSocketAddress&),
                (override));
};

class RecordingObserver final : public ZRMReachabilityInspectorObserver {
  public:
    void inspector(ZRMReachabilityInspector& inspector, ZRMNetworkStatus didChangeStatus) override {
        inspectors.push_back(&inspector);
        statuses.push_back(static_cast<int>(didChangeStatus));
    }
    std::vector<ZRMReachabilityInspector*> inspectors;
    std::vector<int> statuses;
};

class ZRMReachabilityInspectorTest : public testing::Test {
  protected:
    ZRMReachabilityInspectorTest() {
        auto platform = std::make_shared<ZRMPlatform>(*device_.platform());
        platform->reachabilityTargets = targets_;
        platform_ = platform;
    }
    std::shared_ptr<ZRMReachabilityInspector> make(std::shared_ptr<ZRMReachabilityTarget> target) {
        return std::make_shared<ZRMReachabilityInspector>(
            std::move(target), device_.platform()->executor, device_.platform()->consoleLog);
    }
    std::shared_ptr<ZRMRunLoop> makeLoop() {
        return std::make_shared<ZRMRunLoop>(
            device_.platform()->executor->makeSerialQueue("loop", ZRMQualityOfService::Default));
    }
    [[nodiscard]] const std::string& console() { return device_.console().text(); }

    ZRMSimulatedDevice device_;
    const std::shared_ptr<MockTargets> targets_ = std::make_shared<MockTargets>();
    const std::shared_ptr<NiceMock<MockTarget>> target_ = std::make_shared<NiceMock<MockTarget>>();
    std::shared_ptr<const ZRMPlatform> platform_;
};

int statusOf(std::uint32_t flags) {
    return static_cast<int>(ZRMReachabilityInspector::networkStatusForFlags(flags));
}

TEST(ZRMNetworkStatus, FollowsFromTheFlags) {
    EXPECT_EQ(statusOf(0), 0);
    EXPECT_EQ(statusOf(kReachable), 1);
    EXPECT_EQ(statusOf(kReachable | kRequired), 0);
    EXPECT_EQ(statusOf(kReachable | kRequired | kOnTraffic), 1);
    EXPECT_EQ(statusOf(kReachable | kRequired | kOnDemand), 1);
    EXPECT_EQ(statusOf(kReachable | kRequired | kOnTraffic | kOnDemand), 1);
    EXPECT_EQ(statusOf(kReachable | kRequired | kOnTraffic | kIntervention), 0);
    EXPECT_EQ(statusOf(kReachable | kRequired | kOnDemand | kIntervention), 0);
    EXPECT_EQ(statusOf(kReachable | kRequired | kIntervention), 0);
    EXPECT_EQ(statusOf(kReachable | kIntervention), 1);
    EXPECT_EQ(statusOf(kReachable | kOnTraffic | kOnDemand | kIntervention), 1);
}

TEST(ZRMNetworkStatus, CellularComesLastAndWins) {
    EXPECT_EQ(statusOf(kReachable | kCellular), 2);
    EXPECT_EQ(statusOf(kReachable | kCellular | kRequired), 2);
    EXPECT_EQ(statusOf(kReachable | kCellular | kRequired | kOnTraffic | kIntervention), 2);
}

TEST(ZRMNetworkStatus, NothingCountsWithoutReachable) {
    EXPECT_EQ(statusOf(kCellular), 0);
    EXPECT_EQ(statusOf(kRequired | kOnTraffic | kOnDemand | kIntervention | kCellular), 0);
}

TEST_F(ZRMReachabilityInspectorTest, WatchesAHostByName) {
    EXPECT_CALL(*targets_, targetForHost("risk.example.com")).WillOnce(Return(target_));
    EXPECT_CALL(*target_, flags()).WillOnce(Return(kReachable));
    const auto inspector =
        ZRMReachabilityInspector::inspectorWithHostName(platform_, "risk.example.com");
    EXPECT_EQ(inspector->currentReachabilityStatus(), ZRMNetworkStatus::ReachableViaWiFi);
    EXPECT_EQ(console(), "");
}

TEST_F(ZRMReachabilityInspectorTest, WatchesASocketAddress) {
    const ZRMSocketAddress address = {16, 2, 0, 80, 192, 0, 2, 1, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_CALL(*targets_, targetForAddress(address)).WillOnce(Return(target_));
    EXPECT_CALL(*target_, flags()).WillOnce(Return(kReachable | kCellular));
    const auto inspector = ZRMReachabilityInspector::inspectorWithAddress(platform_, address);
    EXPECT_EQ(inspector->currentReachabilityStatus(), ZRMNetworkStatus::ReachableViaWWAN);
}

TEST_F(ZRMReachabilityInspectorTest, WatchesTheInternetByTheAddressOfZeros) {
    const ZRMSocketAddress zeros = {16, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_CALL(*targets_, targetForAddress(zeros)).WillOnce(Return(target_));
    EXPECT_TRUE(ZRMReachabilityInspector::inspectorForInternetConnection(platform_));
    EXPECT_EQ(console(), "");
}

TEST_F(ZRMReachabilityInspectorTest, IsMadeWithoutATargetWhenThePlatformHasNone) {
    EXPECT_CALL(*targets_, targetForHost(_)).WillOnce(Return(nullptr));
    const auto inspector = ZRMReachabilityInspector::inspectorWithHostName(platform_, "host");
    ASSERT_TRUE(inspector);
    EXPECT_EQ(console(), "Chould not create inspector\n\n");
}

TEST_F(ZRMReachabilityInspectorTest, SaysSoWhenAHostNameHasNoCStringForm) {
    for (const std::string& name : {std::string("ho\0st", 5), std::string("h\xC3(st")}) {
        device_.console().clear();
        const auto inspector = ZRMReachabilityInspector::inspectorWithHostName(platform_, name);
        ASSERT_TRUE(inspector);
        EXPECT_EQ(console(), "hostName is incorrect\n\nChould not create inspector\n\n");
    }
}

TEST_F(ZRMReachabilityInspectorTest, WithoutATargetNothingIsReachableAndTheConsoleSaysWhy) {
    const auto inspector = make(nullptr);
    EXPECT_EQ(inspector->currentReachabilityStatus(), ZRMNetworkStatus::NotReachable);
    EXPECT_EQ(console(), "currentNetworkStatus called with NULL SCNetworkReachabilityRef\n\n");
    device_.console().clear();
    EXPECT_FALSE(inspector->connectionRequired());
    EXPECT_EQ(console(), "connectionRequired called with NULL reachabilityRef\n\n");
}

TEST_F(ZRMReachabilityInspectorTest, WithoutATargetTheNotifierDoesNotStart) {
    const auto inspector = make(nullptr);
    EXPECT_FALSE(inspector->startNotifier());
    EXPECT_FALSE(inspector->isNotifierStarted());
}

TEST_F(ZRMReachabilityInspectorTest, UnreadableFlagsAreNotReachable) {
    EXPECT_CALL(*target_, flags()).Times(2).WillRepeatedly(Return(std::nullopt));
    const auto inspector = make(target_);
    EXPECT_EQ(inspector->currentReachabilityStatus(), ZRMNetworkStatus::NotReachable);
    EXPECT_FALSE(inspector->connectionRequired());
}

TEST_F(ZRMReachabilityInspectorTest, TellsWhetherAConnectionIsRequired) {
    EXPECT_CALL(*target_, flags())
        .WillOnce(Return(kReachable | kRequired))
        .WillOnce(Return(kReachable));
    const auto inspector = make(target_);
    EXPECT_TRUE(inspector->connectionRequired());
    EXPECT_FALSE(inspector->connectionRequired());
}

TEST_F(ZRMReachabilityInspectorTest, StartsOnTheGivenLoop) {
    const auto loop = makeLoop();
    EXPECT_CALL(*target_, schedule(loop->queue()));
    const auto inspector = make(target_);
    EXPECT_FALSE(inspector->isNotifierStarted());
    EXPECT_TRUE(inspector->startNotifierWithRunLoop(loop));
    EXPECT_TRUE(inspector->isNotifierStarted());
    EXPECT_EQ(console(), "");
}

TEST_F(ZRMReachabilityInspectorTest, StartsOnTheCurrentLoopWhenNoneIsGiven) {
    const auto loop = makeLoop();
    EXPECT_CALL(*target_, schedule(loop->queue()));
    const auto inspector = make(target_);
    loop->perform([&] { EXPECT_TRUE(inspector->startNotifier()); });

    const auto other = std::make_shared<NiceMock<MockTarget>>();
    EXPECT_CALL(*other, schedule(device_.platform()->executor->mainQueue()));
    EXPECT_TRUE(make(other)->startNotifier());
}

TEST_F(ZRMReachabilityInspectorTest, DoesNotStartWhenTheCallbackIsRefused) {
    EXPECT_CALL(*target_, setCallback(_)).WillOnce(Return(false));
    EXPECT_CALL(*target_, schedule(_)).Times(0);
    const auto inspector = make(target_);
    EXPECT_FALSE(inspector->startNotifier());
    EXPECT_FALSE(inspector->isNotifierStarted());
}

TEST_F(ZRMReachabilityInspectorTest, DoesNotStartWhenTheScheduleIsRefused) {
    EXPECT_CALL(*target_, schedule(_)).WillOnce(Return(false));
    EXPECT_CALL(*target_, unschedule(_)).Times(0);
    const auto inspector = make(target_);
    EXPECT_FALSE(inspector->startNotifier());
    EXPECT_FALSE(inspector->isNotifierStarted());
}

TEST_F(ZRMReachabilityInspectorTest, StartingTwiceComplainsAndRepeatsTheRegistration) {
    const auto first = makeLoop();
    const auto second = makeLoop();
    EXPECT_CALL(*target_, setCallback(_)).Times(2);
    EXPECT_CALL(*target_, schedule(first->queue()));
    EXPECT_CALL(*target_, schedule(second->queue()));
    EXPECT_CALL(*target_, unschedule(second->queue()));
    const auto inspector = make(target_);
    inspector->startNotifierWithRunLoop(first);
    EXPECT_TRUE(inspector->startNotifierWithRunLoop(second));
    EXPECT_EQ(console(),
              "Unbalanced start notifier calls: Trying start notifier while it is active now\n\n");
}

TEST_F(ZRMReachabilityInspectorTest, StopsOnTheLoopItStartedOn) {
    const auto loop = makeLoop();
    EXPECT_CALL(*target_, unschedule(loop->queue())).Times(1);
    const auto inspector = make(target_);
    inspector->startNotifierWithRunLoop(loop);
    inspector->stopNotifier();
    EXPECT_FALSE(inspector->isNotifierStarted());
    EXPECT_EQ(console(), "");
}

TEST_F(ZRMReachabilityInspectorTest, StoppingWhatIsNotStartedDoesNothing) {
    EXPECT_CALL(*target_, unschedule(_)).Times(0);
    const auto inspector = make(target_);
    inspector->stopNotifier();
    make(nullptr)->stopNotifier();
    EXPECT_EQ(console(), "");
}

TEST_F(ZRMReachabilityInspectorTest, StopsWhenItIsDropped) {
    const auto loop = makeLoop();
    EXPECT_CALL(*target_, unschedule(loop->queue())).Times(1);
    auto inspector = make(target_);
    inspector->startNotifierWithRunLoop(loop);
    inspector.reset();
    testing::Mock::VerifyAndClearExpectations(target_.get());
}

TEST_F(ZRMReachabilityInspectorTest, StoppingSaysWhatIsMissing) {
    auto& consoleLog = *device_.platform()->consoleLog;
    const auto loop = makeLoop();
    EXPECT_CALL(*target_, unschedule(_)).Times(0);
    ZRMReachabilityInspector::unschedule(consoleLog, nullptr, loop.get());
    EXPECT_EQ(console(), "stopNotifier called with NULL SCNetworkReachabilityRef\n\n");
    device_.console().clear();
    ZRMReachabilityInspector::unschedule(consoleLog, target_.get(), nullptr);
    EXPECT_EQ(console(), "stopNotifier called with runLoop set to nil\n\n");
}

TEST_F(ZRMReachabilityInspectorTest, TellsEveryObserverTheStatusReadAfresh) {
    const auto inspector = make(target_);
    const auto first = std::make_shared<RecordingObserver>();
    const auto second = std::make_shared<RecordingObserver>();
    inspector->addObserver(first);
    inspector->addObserver(second);
    inspector->startNotifierWithRunLoop(makeLoop());
    EXPECT_CALL(*target_, flags()).WillRepeatedly(Return(kReachable | kCellular));
    target_->callback(0);
    EXPECT_THAT(first->statuses, ElementsAre(2)) << "not what the callback's flags say";
    EXPECT_THAT(first->inspectors, ElementsAre(inspector.get()));
    EXPECT_THAT(second->statuses, ElementsAre(2));
}

TEST_F(ZRMReachabilityInspectorTest, NotifiesAsWorkOfItsLoop) {
    class LoopObserver final : public ZRMReachabilityInspectorObserver {
      public:
        void inspector(ZRMReachabilityInspector& /*inspector*/,
                       ZRMNetworkStatus /*didChangeStatus*/) override {
            loop = ZRMRunLoop::currentRunLoop(executor);
        }
        std::shared_ptr<ZRMExecutor> executor;
        std::shared_ptr<ZRMRunLoop> loop;
    };
    const auto observer = std::make_shared<LoopObserver>();
    observer->executor = device_.platform()->executor;
    const auto loop = makeLoop();
    const auto inspector = make(target_);
    inspector->addObserver(observer);
    inspector->startNotifierWithRunLoop(loop);
    target_->callback(0);
    EXPECT_EQ(observer->loop, loop);
}

TEST_F(ZRMReachabilityInspectorTest, RemovedAndDestroyedObserversAreNotCalled) {
    const auto inspector = make(target_);
    const auto removed = std::make_shared<RecordingObserver>();
    auto destroyed = std::make_shared<RecordingObserver>();
    inspector->addObserver(removed);
    inspector->addObserver(destroyed);
    inspector->addObserver(removed);
    EXPECT_EQ(console(), "<WARNING>: Attempt to add observer which had been added already\n");
    inspector->removeObserver(removed.get());
    destroyed.reset();
    inspector->startNotifierWithRunLoop(makeLoop());
    target_->callback(0);
    EXPECT_THAT(removed->statuses, IsEmpty());
}

TEST_F(ZRMReachabilityInspectorTest, ACallbackAfterTheInspectorIsGoneDoesNothing) {
    auto inspector = make(target_);
    inspector->startNotifierWithRunLoop(makeLoop());
    inspector.reset();
    EXPECT_CALL(*target_, flags()).Times(0);
    target_->callback(kReachable);
}

TEST_F(ZRMReachabilityInspectorTest, TheCallbackAssertsThatItsContextIsAnInspector) {
    const auto messageFor = [](ZRMReachabilityContext* info) -> std::string {
        try {
            ZRMReachabilityCallback(0, info);
        } catch (const ZRMAssertionFailure& failure) {
            return failure.what();
        }
        return "";
    };
    ZRMReachabilityContext other;
    EXPECT_EQ(messageFor(nullptr), "info was NULL in ReachabilityCallback");
    EXPECT_EQ(messageFor(&other), "info was wrong class in ReachabilityCallback");
    EXPECT_EQ(messageFor(make(target_).get()), "");
}

}  // namespace
