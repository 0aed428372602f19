// What ZRMQueue.h promises of timers.
#include <gmock/gmock.h>

#include "ZRMPlatform/Contract_Tests/ZRMContractBody.h"

using testing::ElementsAre;

namespace {

constexpr double kShortSeconds = 0.01;

class ZRMTimerContract : public ZRMContract {
  protected:
    // Notes "end" after every timer that is due by then on this queue.
    void fence(const std::shared_ptr<ZRMQueue>& queue, double afterSeconds) {
        queue->postAfter(afterSeconds, [queue, notes = notes_] { notes->add("end"); });
    }
};

// Handles that a task needs before its timer's call returned.
struct Late {
    std::shared_ptr<ZRMTimerHandle> handle;
};

}  // namespace

TEST_P(ZRMTimerContract, RunsOnItsQueueNotBeforeItsDelay) {
    const auto queue = serialQueue();
    const auto clock = platform()->clock;
    const ZRMDate due = clock->now().addingSeconds(kShortSeconds);
    queue->postAfter(kShortSeconds, [=, notes = notes_] {
        notes->add(queue->isCurrent() ? "on queue" : "elsewhere");
        notes->add(clock->now() >= due ? "in time" : "early");
    });
    ASSERT_TRUE(waitForNotes(2));
    EXPECT_THAT(notes(), ElementsAre("on queue", "in time"));
}

TEST_P(ZRMTimerContract, ADelayOfZeroOrLessPostsAtOnce) {
    const auto queue = serialQueue();
    const auto clock = platform()->clock;
    const double start = clock->uptimeSeconds();
    queue->postAfter(0, note("zero"));
    queue->postAfter(-5, note("negative"));
    ASSERT_TRUE(waitForNotes(2));
    EXPECT_LT(clock->uptimeSeconds() - start, 20);
    EXPECT_THAT(notes(), testing::UnorderedElementsAre("zero", "negative"));
}

TEST_P(ZRMTimerContract, TimersDueAtTheSameMomentFireInTheOrderOfTheirMaking) {
    const auto queue = serialQueue();
    std::vector<std::string> expected;
    for (int number = 0; number < 50; ++number) {
        expected.push_back(std::to_string(number));
        queue->postAfter(kShortSeconds, note(expected.back()));
    }
    ASSERT_TRUE(waitForNotes(50));
    EXPECT_EQ(notes(), expected);
}

TEST_P(ZRMTimerContract, AnEarlierTimerFiresFirstHoweverLateItWasMade) {
    const auto queue = serialQueue();
    queue->postAfter(0.5, note("later"));
    queue->postAfter(kShortSeconds, note("earlier"));
    ASSERT_TRUE(waitForNotes(2));
    EXPECT_THAT(notes(), ElementsAre("earlier", "later"));
}

TEST_P(ZRMTimerContract, DroppingTheHandleLeavesTheTimerRunning) {
    const auto queue = serialQueue();
    queue->postAfter(kShortSeconds, note("ran")).reset();
    EXPECT_TRUE(waitForNotes(1));
}

TEST_P(ZRMTimerContract, RepeatsFirstAfterOnePeriodUntilCancelled) {
    const auto queue = serialQueue();
    const auto clock = platform()->clock;
    const ZRMDate first = clock->now().addingSeconds(kShortSeconds);
    const auto late = std::make_shared<Late>();
    queue->post([=, this, notes = notes_] {
        late->handle = queue->postEvery(kShortSeconds, [=, this] {
            notes->add(clock->now() >= first ? "run" : "early");
            if (notes->all().size() == 3) {
                late->handle->cancel();
                late->handle.reset();
                fence(queue, 10 * kShortSeconds);
            }
        });
    });
    ASSERT_TRUE(waitForNote("end"));
    EXPECT_THAT(notes(), ElementsAre("run", "run", "run", "end"));
}

TEST_P(ZRMTimerContract, PeriodsThatPassedDuringALateRunAreSkipped) {
    constexpr double kPeriod = 0.05;
    const auto queue = serialQueue();
    const auto clock = platform()->clock;
    const std::shared_ptr condition = platform()->executor->makeCondition();
    const auto lateEnd = std::make_shared<double>(0);
    const auto fourth = std::make_shared<double>(0);
    const auto handle = queue->postEvery(kPeriod, [=, notes = notes_] {
        if (notes->all().empty()) {
            const ZRMDate until = clock->now().addingSeconds(6 * kPeriod);
            condition->lock();
            while (clock->now() < until) {
                condition->waitUntil(until);
            }
            condition->unlock();
            *lateEnd = clock->uptimeSeconds();
        }
        *fourth = notes->all().size() == 3 ? clock->uptimeSeconds() : *fourth;
        notes->add("run");
    });
    ASSERT_TRUE(waitForNotes(4));
    handle->cancel();
    // One run may have waited; the two after it come at the ends of whole periods.
    EXPECT_GE(*fourth - *lateEnd, kPeriod);
}

TEST_P(ZRMTimerContract, CancelledOnItsOwnSerialQueueItDoesNotRunAgain) {
    const auto queue = serialQueue();
    queue->post([=, this] {
        const auto due = queue->postAfter(0, note("due"));
        const auto waiting = queue->postAfter(kShortSeconds, note("waiting"));
        due->cancel();
        waiting->cancel();
        fence(queue, 2 * kShortSeconds);
    });
    ASSERT_TRUE(waitForNote("end"));
    EXPECT_THAT(notes(), ElementsAre("end"));
}

TEST_P(ZRMTimerContract, CancelMayBeCalledFromAnywhereAnyNumberOfTimes) {
    const auto queue = serialQueue();
    const auto handle = queue->postAfter(100000, note("ran"));
    handle->cancel();
    handle->cancel();
    concurrentQueue()->post([=, notes = notes_] {
        handle->cancel();
        notes->add("cancelled");
    });
    ASSERT_TRUE(waitForNotes(1));
    EXPECT_THAT(notes(), ElementsAre("cancelled"));
}

TEST_P(ZRMTimerContract, ACancelAfterTheRunChangesNothing) {
    const auto queue = serialQueue();
    const auto handle = queue->postAfter(0, note("ran"));
    ASSERT_TRUE(waitForNotes(1));
    handle->cancel();
    EXPECT_THAT(notes(), ElementsAre("ran"));
}

TEST_P(ZRMTimerContract, ACancelledTimerLetsGoOfItsTask) {
    const auto owned = std::make_shared<int>(0);
    const auto queue = serialQueue();
    const auto once = queue->postAfter(100000, [owned] {});
    const auto often = queue->postEvery(100000, [owned] {});
    once->cancel();
    often->cancel();
    EXPECT_EQ(owned.use_count(), 1);
}

INSTANTIATE_TEST_SUITE_P(Bodies, ZRMTimerContract, zrm_contractBodies(), zrm_contractBodyName);
