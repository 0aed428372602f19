#include "ZRMCloudKit/ZRMCloudKit_Tests/CallObserver/ZRMCallObserverFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class ZRMCallChecks : public ZRMCallObserverFixture {
  protected:
    void startWithPolicy(std::uint64_t count, double interval) {
        observer_->setEventPolicy(ZRMCallInfoEventPolicy(count, interval));
        start();
    }
    [[nodiscard]] std::size_t timesTold(const std::string& what) const {
        return static_cast<std::size_t>(
            std::ranges::count(recorder_->told, what, &ZRMToldCall::what));
    }
};

TEST_F(ZRMCallChecks, AreAsManyAsThePolicySaysAndAnIntervalApart) {
    startWithPolicy(3, 10);
    update(connectedCall("A"));
    device_.advanceBy(500);
    EXPECT_THAT(recorder_->told,
                ElementsAre(ZRMToldCall{"changed", "A", 0}, ZRMToldCall{"active", "A", 10},
                            ZRMToldCall{"active", "A", 20}, ZRMToldCall{"active", "A", 30}));
}

TEST_F(ZRMCallChecks, EndWithTheFollowingSoThatALaterUpdateIsReportedAgain) {
    startWithPolicy(1, 10);
    update(connectedCall("A"));
    update(connectedCall("A"));
    EXPECT_THAT(recorder_->told, SizeIs(1));
    device_.advanceBy(10);
    update(connectedCall("A"));
    device_.advanceBy(500);
    EXPECT_THAT(recorder_->told,
                ElementsAre(ZRMToldCall{"changed", "A", 0}, ZRMToldCall{"active", "A", 10},
                            ZRMToldCall{"changed", "A", 10}, ZRMToldCall{"active", "A", 20}));
}

TEST_F(ZRMCallChecks, GoOnWithoutEndWhenThePolicysCountIsZero) {
    startWithPolicy(0, 10);
    update(connectedCall("A"));
    device_.advanceBy(10000);
    EXPECT_EQ(timesTold("active"), 1000U);
    update(endedCall("A"));
    device_.advanceBy(10000);
    EXPECT_EQ(timesTold("active"), 1000U);
}

TEST_F(ZRMCallChecks, AreCancelledByTheEndOfTheCall) {
    startWithPolicy(3, 10);
    update(connectedCall("A"));
    device_.advanceBy(10);
    update(endedCall("A"));
    const auto before = device_.tasksRun();
    device_.advanceBy(500);
    EXPECT_EQ(timesTold("active"), 1U);
    EXPECT_EQ(device_.tasksRun(), before);
}

TEST_F(ZRMCallChecks, AreCancelledByAnEndThatIsHandledJustBeforeThem) {
    startWithPolicy(1, 10);
    update(connectedCall("A"));
    device_.calls().update(endedCall("A"));
    device_.jumpWallClock(10);
    device_.advanceBy(500);
    EXPECT_EQ(timesTold("active"), 0U);
}

TEST_F(ZRMCallChecks, DoNotCarryOverToANewCallOfTheSameUuid) {
    startWithPolicy(1, 10);
    update(connectedCall("A"));
    device_.advanceBy(6);
    update(endedCall("A"));
    update(connectedCall("A"));
    device_.advanceBy(500);
    EXPECT_THAT(recorder_->told,
                ElementsAre(ZRMToldCall{"changed", "A", 0}, ZRMToldCall{"changed", "A", 6},
                            ZRMToldCall{"changed", "A", 6}, ZRMToldCall{"active", "A", 16}));
}

TEST_F(ZRMCallChecks, TellTheCallAsItIsNow) {
    startWithPolicy(1, 10);
    update(connectedCall("A"));
    auto held = connectedCall("A");
    held.isOnHold = true;
    update(held);
    device_.advanceBy(10);
    ASSERT_THAT(recorder_->calls, SizeIs(3));
    EXPECT_EQ(recorder_->calls[2], held);
}

TEST_F(ZRMCallChecks, SayNothingOfACallThatIsNotConnectedAnyMoreButGoOn) {
    startWithPolicy(2, 10);
    update(connectedCall("A"));
    auto waiting = connectedCall("A");
    waiting.hasConnected = false;
    update(waiting);
    device_.advanceBy(10);
    EXPECT_EQ(timesTold("active"), 0U);
    update(connectedCall("A"));  // as it was when it was last connected
    device_.advanceBy(500);
    EXPECT_THAT(recorder_->told,
                ElementsAre(ZRMToldCall{"changed", "A", 0}, ZRMToldCall{"active", "A", 20}));
}

// A port that tells what the test says, whatever its list of calls holds.
class FreeCalls final : public ZRMCalls {
  public:
    [[nodiscard]] std::vector<ZRMCall> calls() const override { return list; }
    [[nodiscard]] std::shared_ptr<ZRMSubscription> observeCalls(std::shared_ptr<ZRMQueue> queue,
                                                                Callback callback) override {
        queue_ = std::move(queue);
        callback_ = std::move(callback);
        return nullptr;
    }
    void tell(const ZRMCall& call) {
        queue_->post([callback = callback_, call] { callback(call); });
    }
    std::vector<ZRMCall> list;

  private:
    std::shared_ptr<ZRMQueue> queue_;
    Callback callback_;
};

TEST_F(ZRMCallChecks, SayNothingOfACallThatIsNotListedOrListedAsEnded) {
    const auto port = std::make_shared<FreeCalls>();
    const auto observer = std::make_shared<ZRMCallObserver>(port, *device_.platform()->executor);
    observer->setDelegate(recorder_);
    observer->setEventPolicy(ZRMCallInfoEventPolicy(3, 10));
    observer->start();
    port->tell(connectedCall("A"));
    device_.advanceBy(15);
    EXPECT_EQ(timesTold("active"), 0U);
    port->list = {endedCall("A"), connectedCall("B"), connectedCall(std::nullopt)};
    device_.advanceBy(10);
    EXPECT_EQ(timesTold("active"), 0U);
    port->list = {connectedCall("B"), connectedCall("A")};
    device_.advanceBy(10);
    EXPECT_THAT(recorder_->told,
                ElementsAre(ZRMToldCall{"changed", "A", 0}, ZRMToldCall{"active", "A", 30}));
}

TEST_F(ZRMCallChecks, FollowTheWallClock) {
    startWithPolicy(1, 10);
    update(connectedCall("A"));
    device_.jumpWallClock(10);
    EXPECT_EQ(timesTold("active"), 1U);
}

TEST_F(ZRMCallChecks, TakeANewPolicysIntervalAtOnceAndItsCountForNewCalls) {
    startWithPolicy(2, 10);
    update(connectedCall("A"));
    observer_->setEventPolicy(ZRMCallInfoEventPolicy(1, 100));
    update(connectedCall("B"));
    device_.advanceBy(500);
    EXPECT_THAT(recorder_->told,
                ElementsAre(ZRMToldCall{"changed", "A", 0}, ZRMToldCall{"changed", "B", 0},
                            ZRMToldCall{"active", "A", 10}, ZRMToldCall{"active", "B", 100},
                            ZRMToldCall{"active", "A", 110}));
}

TEST_F(ZRMCallChecks, DoNotPileUpUnderTenThousandUpdatesOfOneCall) {
    startWithPolicy(1, 10);
    const auto before = device_.tasksRun();
    for (int each = 0; each < 10000; ++each) {
        device_.calls().update(connectedCall("A"));
    }
    device_.runUntilIdle();
    EXPECT_EQ(device_.tasksRun() - before, 10000U);  // the deliveries
    EXPECT_THAT(recorder_->told, SizeIs(1));
    device_.advanceBy(500);
    EXPECT_EQ(device_.tasksRun() - before, 10001U);  // and one check
    EXPECT_THAT(recorder_->told, SizeIs(2));
}

TEST_F(ZRMCallChecks, AreNotLeftOverFromTenThousandCallsThatCameAndWent) {
    startWithPolicy(0, 10);
    for (int each = 0; each < 10000; ++each) {
        device_.calls().update(connectedCall(std::to_string(each)));
        device_.calls().update(endedCall(std::to_string(each)));
        device_.runUntilIdle();
    }
    EXPECT_THAT(recorder_->told, SizeIs(20000));
    const auto before = device_.tasksRun();
    device_.advanceBy(500);
    EXPECT_EQ(device_.tasksRun(), before);
}

TEST_F(ZRMCallChecks, EndWithTheObserver) {
    const auto port = std::make_shared<FreeCalls>();
    auto observer = std::make_shared<ZRMCallObserver>(port, *device_.platform()->executor);
    observer->setDelegate(recorder_);
    observer->start();
    port->tell(connectedCall("A"));
    device_.runUntilIdle();
    EXPECT_THAT(recorder_->told, SizeIs(1));
    port->tell(endedCall("A"));
    observer.reset();
    device_.advanceBy(500);
    EXPECT_THAT(recorder_->told, SizeIs(1));
}

TEST_F(ZRMCallChecks, OfCallsUnderWayEndWithAnObserverThatHardlyStarted) {
    const auto port = std::make_shared<FreeCalls>();
    port->list = {connectedCall("A")};
    auto observer = std::make_shared<ZRMCallObserver>(port, *device_.platform()->executor);
    observer->setDelegate(recorder_);
    observer->start();
    observer.reset();
    device_.advanceBy(500);
    EXPECT_THAT(recorder_->told, IsEmpty());
}

}  // namespace
