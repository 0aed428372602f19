#include <chrono>
#include <cstdlib>
#include <optional>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>

#include "ZRMPlatform/Linux/ZRMLinuxExecutor.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestWaiting.h"

namespace {

using Numbers = ZRMAwaited<std::vector<int>>;

auto hasSize(std::size_t size) {
    return [size](const auto& held) { return held.size() >= size; };
}

std::shared_ptr<ZRMQueue> serialQueue(const std::string& label = "test") {
    return ZRMLinuxExecutor().makeSerialQueue(label, ZRMQualityOfService::Default);
}

std::shared_ptr<ZRMQueue> concurrentQueue() {
    return ZRMLinuxExecutor().concurrentQueue(ZRMQualityOfService::Default);
}

// Returns once what was posted to a serial queue so far has run.
void drain(ZRMQueue& queue) {
    ZRMAwaited<bool> drained;
    queue.post([&] { drained.set(true); });
    EXPECT_TRUE(drained.waitUntil([](bool held) { return held; }));
}

}  // namespace

TEST(ZRMLinuxExecutor, ASerialQueueRunsItsTasksOneAtATimeInTheOrderOfThePosts) {
    const auto queue = serialQueue();
    Numbers order;
    std::atomic<int> running = 0;
    std::atomic<bool> overlapped = false;
    for (int number = 0; number < 2000; ++number) {
        queue->post([&, number] {
            overlapped = overlapped || ++running != 1;
            order.change([number](auto& held) { held.push_back(number); });
            --running;
        });
    }
    ASSERT_TRUE(order.waitUntil(hasSize(2000)));
    EXPECT_FALSE(overlapped);
    const auto told = order.value();
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
}

TEST(ZRMLinuxExecutor, WhatOneTaskOfASerialQueueWroteTheNextSees) {
    const auto queue = serialQueue();
    ZRMAwaited<bool> done;
    int plain = 0;  // no lock: the queue orders the accesses
    for (int round = 0; round < 1000; ++round) {
        queue->post([&plain] { ++plain; });
    }
    queue->post([&] { done.set(plain == 1000); });
    EXPECT_TRUE(done.waitUntil([](bool held) { return held; }));
}

TEST(ZRMLinuxExecutor, AConcurrentQueueRunsFourTasksSideBySide) {
    const auto queue = concurrentQueue();
    ZRMAwaited<int> met;
    ZRMAwaited<int> allMet;
    for (int task = 0; task < 4; ++task) {
        queue->post([&] {
            met.change([](int& held) { ++held; });
            if (met.waitUntil([](int held) { return held == 4; })) {
                allMet.change([](int& held) { ++held; });
            }
        });
    }
    EXPECT_TRUE(allMet.waitUntil([](int held) { return held == 4; }));
}

TEST(ZRMLinuxExecutor, ABlockedSerialQueueDoesNotHoldUpAnother) {
    const auto blocked = serialQueue();
    const auto free = serialQueue();
    ZRMAwaited<bool> freed;
    ZRMAwaited<bool> ended;
    blocked->post([&] { ended.set(freed.waitUntil([](bool held) { return held; })); });
    free->post([&] { freed.set(true); });
    EXPECT_TRUE(ended.waitUntil([](bool held) { return held; }));
}

TEST(ZRMLinuxExecutor, AWokenWorkerDoesNotTakeTheProcessorFromWhoWokeIt) {
    ZRMAwaited<std::optional<int>> policy;
    concurrentQueue()->post([&] {
        int found = -1;
        sched_param parameters{};
        pthread_getschedparam(pthread_self(), &found, &parameters);
        policy.set(found);
    });
    ASSERT_TRUE(policy.waitUntil([](const auto& held) { return held.has_value(); }));
    EXPECT_EQ(policy.value(), SCHED_BATCH);
}

TEST(ZRMLinuxExecutor, APostNeverRunsTheTaskBeforeItReturns) {
    const auto queue = serialQueue();
    ZRMAwaited<std::vector<std::string>> order;
    queue->post([&] {
        queue->post([&] { order.change([](auto& held) { held.emplace_back("inner"); }); });
        order.change([](auto& held) { held.emplace_back("outer"); });
    });
    ASSERT_TRUE(order.waitUntil(hasSize(2)));
    EXPECT_EQ(order.value(), (std::vector<std::string>{"outer", "inner"}));
}

TEST(ZRMLinuxExecutor, OnlyTheQueueOfTheRunningTaskIsCurrent) {
    const auto queue = serialQueue("mine");
    const auto other = serialQueue("mine");
    EXPECT_EQ(queue->label(), "mine");
    EXPECT_FALSE(queue->isCurrent());
    ZRMAwaited<std::vector<bool>> told;
    queue->post([&] {
        told.set({queue->isCurrent(), other->isCurrent(), concurrentQueue()->isCurrent()});
    });
    ASSERT_TRUE(told.waitUntil(hasSize(3)));
    EXPECT_EQ(told.value(), (std::vector<bool>{true, false, false}));
}

TEST(ZRMLinuxExecutor, TheConcurrentAndTheMainQueueAreThereOnce) {
    ZRMLinuxExecutor one;
    ZRMLinuxExecutor two;
    EXPECT_EQ(one.concurrentQueue(ZRMQualityOfService::Utility),
              two.concurrentQueue(ZRMQualityOfService::Utility));
    EXPECT_NE(one.concurrentQueue(ZRMQualityOfService::Utility),
              one.concurrentQueue(ZRMQualityOfService::Background));
    EXPECT_EQ(one.mainQueue(), two.mainQueue());
    EXPECT_NE(one.makeSerialQueue("x", ZRMQualityOfService::Default),
              one.makeSerialQueue("x", ZRMQualityOfService::Default));
}

TEST(ZRMLinuxExecutor, TheMainQueueRunsOnOneThread) {
    ZRMLinuxExecutor executor;
    ZRMAwaited<std::vector<std::uint64_t>> threads;
    for (int round = 0; round < 100; ++round) {
        executor.mainQueue()->post([&] {
            threads.change([&](auto& held) { held.push_back(executor.currentThreadIdentifier()); });
        });
    }
    ASSERT_TRUE(threads.waitUntil(hasSize(100)));
    const auto told = threads.value();
    EXPECT_EQ(std::set(told.begin(), told.end()).size(), 1U);
    EXPECT_NE(told.front(), executor.currentThreadIdentifier());
}

TEST(ZRMLinuxExecutor, AHostsMainQueueIsTheMainQueue) {
    const auto hosts = serialQueue("host");
    EXPECT_EQ(ZRMLinuxExecutor(hosts).mainQueue(), hosts);
}

TEST(ZRMLinuxExecutor, ATaskThatThrowsIsReportedAndTheQueueGoesOn) {
    const auto queue = serialQueue("thrower");
    ZRMAwaited<bool> ran;
    testing::internal::CaptureStderr();
    queue->post([] { throw std::runtime_error("oops"); });
    queue->post([] { throw 5; });
    queue->post([&] { ran.set(true); });
    ASSERT_TRUE(ran.waitUntil([](bool held) { return held; }));
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "A task of queue thrower threw: oops\nA task of queue thrower threw\n");
}

TEST(ZRMLinuxExecutor, DroppingTheLastReferenceLetsPostedTasksAndTimersRun) {
    ZRMAwaited<int> ran;
    auto queue = serialQueue();
    queue->post([&] { ran.change([](int& held) { ++held; }); });
    queue->postAfter(0.01, [&] { ran.change([](int& held) { ++held; }); });
    queue.reset();
    EXPECT_TRUE(ran.waitUntil([](int held) { return held == 2; }));
}

TEST(ZRMLinuxExecutor, EverySignalIsBlockedOnTheLibrarysThreads) {
    ZRMAwaited<std::vector<int>> open;
    ZRMAwaited<int> asked;
    const auto ask = [&] {
        sigset_t mask;
        pthread_sigmask(SIG_SETMASK, nullptr, &mask);
        for (const int number : {SIGINT, SIGTERM, SIGUSR1, SIGPIPE, SIGALRM, SIGCHLD}) {
            if (sigismember(&mask, number) != 1) {
                open.change([number](auto& held) { held.push_back(number); });
            }
        }
        asked.change([](int& held) { ++held; });
    };
    serialQueue()->post(ask);
    ZRMLinuxExecutor().mainQueue()->post(ask);
    ASSERT_TRUE(asked.waitUntil([](int held) { return held == 2; }));
    EXPECT_TRUE(open.value().empty());
    sigset_t own;
    pthread_sigmask(SIG_SETMASK, nullptr, &own);
    EXPECT_EQ(sigismember(&own, SIGINT), 0);
}

TEST(ZRMLinuxTimers, ATimerFiresOnItsQueueOnceTheWallClockGotThere) {
    const auto queue = serialQueue();
    ZRMAwaited<std::vector<bool>> fired;
    const auto start = std::chrono::system_clock::now();
    queue->postAfter(0.02, [&] { fired.set({queue->isCurrent()}); });
    ASSERT_TRUE(fired.waitUntil(hasSize(1)));
    EXPECT_GE(std::chrono::system_clock::now() - start, std::chrono::milliseconds(20));
    EXPECT_TRUE(fired.value().front());
}

TEST(ZRMLinuxTimers, AnEarlierTimerFiresFirstHoweverLateItWasMade) {
    const auto queue = serialQueue();
    Numbers order;
    queue->postAfter(0.06, [&] { order.change([](auto& held) { held.push_back(2); }); });
    queue->postAfter(0.02, [&] { order.change([](auto& held) { held.push_back(1); }); });
    ASSERT_TRUE(order.waitUntil(hasSize(2)));
    EXPECT_EQ(order.value(), (std::vector<int>{1, 2}));
}

TEST(ZRMLinuxTimers, ADelayOfZeroOrLessFiresAtOnce) {
    const auto queue = serialQueue();
    Numbers order;
    queue->postAfter(0, [&] { order.change([](auto& held) { held.push_back(1); }); });
    queue->postAfter(-5, [&] { order.change([](auto& held) { held.push_back(2); }); });
    queue->post([&] { order.change([](auto& held) { held.push_back(3); }); });
    ASSERT_TRUE(order.waitUntil(hasSize(3)));
    EXPECT_EQ(order.value(), (std::vector<int>{1, 2, 3}));
}

TEST(ZRMLinuxTimers, ARepeatingTimerFiresUntilItsOwnQueueCancelsIt) {
    const auto queue = serialQueue();
    ZRMAwaited<int> runs;
    ZRMAwaited<bool> later;
    queue->post([&] {
        const auto handle = std::make_shared<std::shared_ptr<ZRMTimerHandle>>();
        *handle = queue->postEvery(0.002, [&, handle] {
            runs.change([](int& held) { ++held; });
            if (runs.value() == 3) {
                (*handle)->cancel();
                (*handle)->cancel();
                queue->postAfter(0.02, [&] { later.set(true); });
            }
        });
    });
    ASSERT_TRUE(later.waitUntil([](bool held) { return held; }));
    EXPECT_EQ(runs.value(), 3);
}

TEST(ZRMLinuxTimers, ACancelledTimerLetsGoOfItsTask) {
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watched = held;
    const auto handle = serialQueue()->postAfter(3600, [held = std::move(held)] {});
    EXPECT_FALSE(watched.expired());
    handle->cancel();
    EXPECT_TRUE(watched.expired());
}

TEST(ZRMLinuxTimers, ACancelBehindAPostedRunStillHoldsOnTheTimersOwnQueue) {
    const auto queue = serialQueue();
    ZRMAwaited<bool> ran;
    ZRMAwaited<bool> checked;
    queue->post([&] {
        const auto handle = queue->postAfter(0, [&] { ran.set(true); });  // posted behind this task
        handle->cancel();
        queue->post([&] { checked.set(true); });
    });
    ASSERT_TRUE(checked.waitUntil([](bool held) { return held; }));
    EXPECT_FALSE(ran.value());
}

TEST(ZRMLinuxTimers, DroppingTheHandleLeavesTheTimerRunning) {
    ZRMAwaited<bool> ran;
    serialQueue()->postAfter(0.005, [&] { ran.set(true); }).reset();
    EXPECT_TRUE(ran.waitUntil([](bool held) { return held; }));
}

TEST(ZRMLinuxTimers, PeriodsThatPassedDuringALateRunAreSkipped) {
    using std::chrono::milliseconds;
    const auto queue = serialQueue();
    ZRMAwaited<std::vector<std::chrono::system_clock::time_point>> runs;
    const auto handle = queue->postEvery(0.01, [&] {
        runs.change([](auto& held) { held.push_back(std::chrono::system_clock::now()); });
        if (runs.value().size() == 1) {  // holds the queue for many periods
            const auto until = std::chrono::system_clock::now() + milliseconds(55);
            while (std::chrono::system_clock::now() < until) {
                std::this_thread::yield();
            }
        }
    });
    ASSERT_TRUE(runs.waitUntil(hasSize(4)));
    handle->cancel();
    drain(*queue);
    const auto times = runs.value();
    // Had they bunched up, the four would lie within the busy time and next to nothing more.
    EXPECT_GE(times[3] - times[0], milliseconds(55 + 10));
}

TEST(ZRMLinuxTimers, AThrowingRunDoesNotEndARepeatingTimer) {
    const auto queue = serialQueue();
    ZRMAwaited<int> runs;
    testing::internal::CaptureStderr();
    const auto handle = queue->postEvery(0.002, [&] {
        runs.change([](int& held) { ++held; });
        throw std::runtime_error("again");
    });
    EXPECT_TRUE(runs.waitUntil([](int held) { return held >= 3; }));
    handle->cancel();
    drain(*queue);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("threw: again"), std::string::npos);
}

TEST(ZRMLinuxTimers, ADelayBeyondTheClockNeitherFiresNorOverflows) {
    const auto queue = serialQueue();
    ZRMAwaited<bool> wrong;
    const auto handle = queue->postAfter(1e300, [&] { wrong.set(true); });
    ZRMAwaited<bool> right;
    queue->postAfter(0.005, [&] { right.set(true); });
    EXPECT_TRUE(right.waitUntil([](bool held) { return held; }));
    EXPECT_FALSE(wrong.value());
    handle->cancel();
}

TEST(ZRMLinuxCondition, TimesOutAtADeadlineThatPassed) {
    const auto condition = ZRMLinuxExecutor().makeCondition();
    condition->lock();
    EXPECT_FALSE(condition->waitUntil({0}));
    condition->unlock();
}

TEST(ZRMLinuxCondition, ASignalWakesAWaiterThatThenHoldsTheLock) {
    const auto condition = ZRMLinuxExecutor().makeCondition();
    const double soon =
        30 +
        std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
    bool signalled = false;  // under the condition's lock
    condition->lock();
    serialQueue()->post([&] {
        condition->lock();
        signalled = true;
        condition->signal();
        condition->unlock();
    });
    bool woken = true;
    while (!signalled && woken) {
        woken = condition->waitUntil({soon});
    }
    EXPECT_TRUE(woken);
    EXPECT_TRUE(signalled);
    condition->unlock();
}

namespace {

void postForEver(const std::shared_ptr<ZRMQueue>& queue) {
    queue->postAfter(0.0001, [] {});
    queue->post([queue] { postForEver(queue); });
}

[[noreturn]] void exitWhileWorkRuns() {
    ZRMLinuxExecutor executor;
    ZRMAwaited<int> started;
    const auto countStart = [&] { started.change([](int& held) { ++held; }); };
    const auto first = executor.makeSerialQueue("first", ZRMQualityOfService::Default);
    const auto second = executor.makeSerialQueue("second", ZRMQualityOfService::Default);
    for (const auto& queue : {first, second, executor.mainQueue()}) {
        queue->post(countStart);
        postForEver(queue);
        queue->postEvery(0.0001, [] {});
    }
    executor.concurrentQueue(ZRMQualityOfService::Default)->post([&] {
        countStart();
        for (;;) {
            std::this_thread::yield();
        }
    });
    std::exit(started.waitUntil([](int held) { return held == 4; }) ? 0 : 1);
}

}  // namespace

TEST(ZRMLinuxExecutorDeathTest, ProcessExitNeitherWaitsNorCrashesWhileWorkRuns) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(exitWhileWorkRuns(), testing::ExitedWithCode(0), "");
}
