// What ZRMCalls.h promises.
#include <gmock/gmock.h>

#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class ZRMCallsContract : public ZRMContract {
  protected:
    [[nodiscard]] ZRMCalls& calls() { return *platform()->calls; }
    [[nodiscard]] ZRMCalls::Callback noteCalls() {
        return [notes = notes_](const ZRMCall& call) { notes->add(text(call)); };
    }
    static std::string text(const ZRMCall& call) {
        return call.uuid.value_or("none") + (call.hasConnected ? " connected" : "") +
               (call.hasEnded ? " ended" : "");
    }
};

ZRMCall ringing(const char* uuid) {
    return {.uuid = uuid, .isOutgoing = true};
}
ZRMCall connected(const char* uuid) {
    return {.uuid = uuid, .hasConnected = true, .isOutgoing = true};
}
ZRMCall ended(const char* uuid) {
    return {.uuid = uuid, .hasConnected = true, .hasEnded = true, .isOutgoing = true};
}

}  // namespace

TEST_P(ZRMCallsContract, ThereAreNoneAtFirst) {
    EXPECT_THAT(calls().calls(), IsEmpty());
}

TEST_P(ZRMCallsContract, ListsCallsInTheOrderInWhichTheyBegan) {
    body_->updateCall(ringing("A"));
    body_->updateCall(ringing("B"));
    body_->updateCall(connected("A"));
    EXPECT_THAT(calls().calls(), ElementsAre(connected("A"), ringing("B")));
}

TEST_P(ZRMCallsContract, ACallThatHasEndedLeavesTheList) {
    body_->updateCall(ringing("A"));
    body_->updateCall(ringing("B"));
    body_->updateCall(ended("A"));
    EXPECT_THAT(calls().calls(), ElementsAre(ringing("B")));
}

TEST_P(ZRMCallsContract, ACallWithoutAUuidIsACallToo) {
    body_->updateCall({.hasConnected = true});
    EXPECT_THAT(calls().calls(), ElementsAre(ZRMCall{.hasConnected = true}));
}

TEST_P(ZRMCallsContract, TellsEveryLaterUpdateInOrder) {
    body_->updateCall(ringing("A"));
    const auto queue = serialQueue();
    const auto subscription = calls().observeCalls(queue, noteCalls());
    body_->updateCall(connected("A"));
    body_->updateCall(connected("A"));
    body_->updateCall(ringing("B"));
    body_->updateCall(ended("A"));
    ASSERT_TRUE(waitForNotes(4));
    EXPECT_THAT(notes(), ElementsAre("A connected", "A connected", "B", "A connected ended"));
}

TEST_P(ZRMCallsContract, TellsOfTheEndOfACallThatItNeverHeardOf) {
    const auto queue = serialQueue();
    const auto subscription = calls().observeCalls(queue, noteCalls());
    body_->updateCall(ended("A"));
    ASSERT_TRUE(waitForEndOf(*queue));
    EXPECT_THAT(notes(), ElementsAre("A connected ended", "end"));
}

TEST_P(ZRMCallsContract, TheCallbackRunsOnTheQueue) {
    const auto queue = serialQueue();
    const auto subscription = calls().observeCalls(queue, [queue, notes = notes_](const ZRMCall&) {
        notes->add(queue->isCurrent() ? "on queue" : "elsewhere");
    });
    body_->updateCall(ringing("A"));
    ASSERT_TRUE(waitForNotes(1));
    EXPECT_THAT(notes(), ElementsAre("on queue"));
}

TEST_P(ZRMCallsContract, EveryObserverIsTold) {
    const auto queue = serialQueue();
    const auto first = calls().observeCalls(queue, noteCalls());
    const auto second = calls().observeCalls(queue, noteCalls());
    body_->updateCall(ringing("A"));
    ASSERT_TRUE(waitForEndOf(*queue));
    EXPECT_THAT(notes(), ElementsAre("A", "A", "end"));
}

TEST_P(ZRMCallsContract, ADroppedSubscriptionHearsNothing) {
    const auto queue = serialQueue();
    auto subscription = calls().observeCalls(queue, noteCalls());
    subscription.reset();
    body_->updateCall(ringing("A"));
    ASSERT_TRUE(waitForEndOf(*queue));
    EXPECT_THAT(notes(), ElementsAre("end"));
}

TEST_P(ZRMCallsContract, DroppedInItsOwnCallbackItHearsNothingMore) {
    const auto queue = serialQueue();
    auto kept = std::make_shared<std::shared_ptr<ZRMSubscription>>();
    queue->post([this, kept, queue] {
        *kept = calls().observeCalls(queue, [kept, notes = notes_](const ZRMCall& call) {
            notes->add(text(call));
            kept->reset();
        });
        body_->updateCall(ringing("A"));
        body_->updateCall(ringing("B"));
        body_->updateCall(ringing("C"));
    });
    ASSERT_TRUE(waitForNote("A"));
    ASSERT_TRUE(waitForEndOf(*queue));
    EXPECT_THAT(notes(), ElementsAre("A", "end"));
}

TEST_P(ZRMCallsContract, LetsGoOfTheCallbackOfADroppedSubscription) {
    const auto owned = std::make_shared<int>(0);
    auto subscription = calls().observeCalls(serialQueue(), [owned](const ZRMCall&) {});
    EXPECT_EQ(owned.use_count(), 2);
    subscription.reset();
    EXPECT_EQ(owned.use_count(), 1);
}

TEST_P(ZRMCallsContract, ACallbackMayAskForTheCallsAndObserve) {
    const auto queue = serialQueue();
    const auto later = std::make_shared<std::shared_ptr<ZRMSubscription>>();
    const auto subscription = calls().observeCalls(queue, [this, later, queue](const ZRMCall&) {
        notes_->add(std::to_string(calls().calls().size()));
        *later = calls().observeCalls(queue, [](const ZRMCall&) {});
    });
    body_->updateCall(ringing("A"));
    ASSERT_TRUE(waitForEndOf(*queue));
    EXPECT_THAT(notes(), ElementsAre("1", "end"));
    EXPECT_TRUE(*later);
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMCallsContract, zrm_contractBodies(), zrm_contractBodyName);
