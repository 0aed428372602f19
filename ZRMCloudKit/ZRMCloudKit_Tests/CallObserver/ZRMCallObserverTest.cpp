#include "ZRMCloudKit/ZRMCloudKit_Tests/CallObserver/ZRMCallObserverFixture.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class ZRMCallObservation : public ZRMCallObserverFixture {};

TEST_F(ZRMCallObservation, HasOneObserverAPlatform) {
    EXPECT_EQ(ZRMCallObserver::sharedInstance(), observer_);
    EXPECT_EQ(ZRMCallObserver::observerForPlatform(*device_.platform()), observer_);
    device_.restartProcess();
    EXPECT_NE(ZRMCallObserver::sharedInstance(), observer_);
}

TEST_F(ZRMCallObservation, MakesItsSerialQueueAtOnce) {
    const auto& queues = device_.executor().madeQueues();
    ASSERT_THAT(queues, SizeIs(1));
    EXPECT_EQ(queues[0].label, "com.velorin.zrm.callobserver.dispatch");
}

TEST_F(ZRMCallObservation, BeginsWithTheDefaultPolicyAndReturnsToItWithoutOne) {
    EXPECT_EQ(observer_->eventPolicy(), ZRMCallInfoEventPolicy::defaultPolicy());
    observer_->setEventPolicy(ZRMCallInfoEventPolicy(7, 8));
    EXPECT_EQ(observer_->eventPolicy(), ZRMCallInfoEventPolicy(7, 8));
    observer_->setEventPolicy(std::nullopt);
    EXPECT_EQ(observer_->eventPolicy(), ZRMCallInfoEventPolicy::defaultPolicy());
}

TEST_F(ZRMCallObservation, KnowsNoCallsBeforeTheStart) {
    update(connectedCall("A"));
    EXPECT_THAT(observer_->calls(), IsEmpty());
    start();
    EXPECT_THAT(observer_->calls(), ElementsAre(connectedCall("A")));
    update(endedCall("A"));
    EXPECT_THAT(observer_->calls(), IsEmpty());
}

TEST_F(ZRMCallObservation, TellsNothingBeforeTheStart) {
    update(connectedCall("A"));
    update(endedCall("A"));
    device_.advanceBy(500);
    EXPECT_THAT(recorder_->told, IsEmpty());
}

TEST_F(ZRMCallObservation, FollowsCallsFoundAtTheStartWithoutReportingThemAsChanged) {
    update(connectedCall("A"));
    ZRMCall ringing;
    ringing.uuid = "B";
    update(ringing);
    start();
    EXPECT_THAT(recorder_->told, IsEmpty());
    update(connectedCall("A"));  // as it was
    EXPECT_THAT(recorder_->told, IsEmpty());
    device_.advanceBy(500);
    EXPECT_THAT(recorder_->told, ElementsAre(ZRMToldCall{"active", "A", 120}));
}

TEST_F(ZRMCallObservation, HandlesTheCallsFoundAtTheStartBeforeAnyUpdate) {
    update(connectedCall("A"));
    observer_->start();
    auto held = connectedCall("A");
    held.isOnHold = true;
    update(held);
    EXPECT_THAT(recorder_->calls, ElementsAre(held));
}

TEST_F(ZRMCallObservation, StartsOnce) {
    start();
    start();
    update(connectedCall("A"));
    EXPECT_THAT(recorder_->told, SizeIs(1));
    device_.advanceBy(500);
    EXPECT_THAT(recorder_->told, SizeIs(2));
}

TEST_F(ZRMCallObservation, ReportsAConnectedCallOnceAndLooksAtItAgainTwoMinutesLater) {
    start();
    update(connectedCall("A"));
    device_.advanceBy(500);
    EXPECT_THAT(recorder_->told,
                ElementsAre(ZRMToldCall{"changed", "A", 0}, ZRMToldCall{"active", "A", 120}));
}

TEST_F(ZRMCallObservation, IgnoresACallThatHasNotConnected) {
    start();
    ZRMCall ringing;
    ringing.uuid = "A";
    update(ringing);
    ringing.hasEnded = true;
    update(ringing);
    device_.advanceBy(500);
    EXPECT_THAT(recorder_->told, IsEmpty());
}

TEST_F(ZRMCallObservation, ReportsEachChangeButNoRepetition) {
    start();
    update(connectedCall("A"));
    update(connectedCall("A"));
    auto held = connectedCall("A");
    held.isOnHold = true;
    update(held);
    update(held);
    update(connectedCall("A"));
    EXPECT_THAT(recorder_->calls, ElementsAre(connectedCall("A"), held, connectedCall("A")));
    device_.advanceBy(500);
    EXPECT_THAT(recorder_->told, SizeIs(4));  // one check, however often it changed
}

TEST_F(ZRMCallObservation, ReportsTheEndOfAFollowedCallAndForgetsIt) {
    start();
    update(connectedCall("A"));
    update(endedCall("A"));
    EXPECT_THAT(recorder_->calls, ElementsAre(connectedCall("A"), endedCall("A")));
    device_.advanceBy(500);
    EXPECT_THAT(recorder_->told, SizeIs(2));
    update(connectedCall("A"));  // unknown again
    EXPECT_THAT(recorder_->told, SizeIs(3));
}

TEST_F(ZRMCallObservation, ReportsACallThatConnectedAndEndedInOneUpdateAndThenForgetsIt) {
    start();
    update(endedCall("A"));
    EXPECT_THAT(recorder_->calls, ElementsAre(endedCall("A")));
    update(endedCall("A"));  // new again
    EXPECT_THAT(recorder_->calls, ElementsAre(endedCall("A"), endedCall("A")));
    const auto before = device_.tasksRun();
    device_.advanceBy(500);
    EXPECT_EQ(device_.tasksRun(), before);  // no check is left
}

TEST_F(ZRMCallObservation, ForgetsAFollowedCallThatEndsWithoutSayingItConnected) {
    start();
    update(connectedCall("A"));
    update(endedCall("A", false));
    EXPECT_THAT(recorder_->calls, ElementsAre(connectedCall("A")));
    device_.advanceBy(500);
    EXPECT_THAT(recorder_->told, SizeIs(1));
}

TEST_F(ZRMCallObservation, TellsOnItsOwnQueue) {
    start();
    update(connectedCall("A"));
    device_.advanceBy(120);
    ASSERT_THAT(recorder_->threads, SizeIs(2));
    EXPECT_EQ(recorder_->threads[0], recorder_->threads[1]);
    EXPECT_THAT(recorder_->threads, Each(testing::Ne(ZRMSimulatedExecutor::kMainThreadIdentifier)));
    EXPECT_THAT(recorder_->threads,
                Each(testing::Ne(ZRMSimulatedExecutor::kOutsideThreadIdentifier)));
}

TEST_F(ZRMCallObservation, GoesOnWithoutADelegate) {
    start();
    recorder_.reset();
    update(connectedCall("A"));
    device_.advanceBy(500);
    recorder_ = std::make_shared<ZRMCallRecorder>(device_);
    observer_->setDelegate(recorder_);
    update(connectedCall("A"));
    EXPECT_THAT(recorder_->told, ElementsAre(ZRMToldCall{"changed", "A", 0}));
}

TEST_F(ZRMCallObservation, ReportsACallWithoutAUuidEachTimeAndNeverFollowsIt) {
    update(connectedCall(std::nullopt));
    start();
    EXPECT_THAT(recorder_->told, IsEmpty());
    update(connectedCall(std::nullopt));
    update(connectedCall(std::nullopt));
    update(endedCall(std::nullopt));
    EXPECT_THAT(recorder_->calls,
                ElementsAre(connectedCall(std::nullopt), connectedCall(std::nullopt),
                            endedCall(std::nullopt)));
    const auto before = device_.tasksRun();
    device_.advanceBy(500);
    EXPECT_EQ(device_.tasksRun(), before);
}

TEST_F(ZRMCallObservation, TellsTwoCallsApart) {
    start();
    update(connectedCall("A"));
    device_.advanceBy(60);
    update(connectedCall("B"));
    update(endedCall("A"));
    device_.advanceBy(500);
    EXPECT_THAT(recorder_->told,
                ElementsAre(ZRMToldCall{"changed", "A", 0}, ZRMToldCall{"changed", "B", 60},
                            ZRMToldCall{"changed", "A", 60}, ZRMToldCall{"active", "B", 180}));
}

TEST(ZRMCallObserverItems, HaveTheUuidOfTheirCall) {
    ZRMCallObserverItem item;
    EXPECT_EQ(item.callUUID(), std::nullopt);
    item.call = ZRMCall();
    EXPECT_EQ(item.callUUID(), std::nullopt);
    item.call->uuid = "A";
    EXPECT_EQ(item.callUUID(), "A");
}

}  // namespace
