// Detectors on real queues, used by many threads. The thread sanitizer is the second reader.
#include <atomic>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>

#include "ZRMCloudKit/ZRMCloudKit_Lib/CallObserver/ZRMCallObserver.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/ScreenCapture/ZRMScreenRecordingDetector.h"
#include "ZRMPlatform/Linux/ZRMLinuxExecutor.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestWaiting.h"

namespace {

constexpr int kThreads = 4;
constexpr int kEach = 100;

void inThreads(const std::function<void(int thread)>& work) {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back(work, thread);
    }
    for (auto& thread : threads) {
        thread.join();
    }
}

ZRMCall connectedCall(std::string uuid) {
    ZRMCall call;
    call.uuid = std::move(uuid);
    call.hasConnected = true;
    return call;
}

// Calls that begin on any thread and do not end.
class BeginningCalls final : public ZRMCalls {
  public:
    [[nodiscard]] std::vector<ZRMCall> calls() const override {
        const std::lock_guard lock(mutex_);
        return calls_;
    }
    [[nodiscard]] std::shared_ptr<ZRMSubscription> observeCalls(std::shared_ptr<ZRMQueue> queue,
                                                                Callback callback) override {
        const std::lock_guard lock(mutex_);
        queue_ = std::move(queue);
        callback_ = std::move(callback);
        return std::make_shared<ZRMSubscription>();
    }
    void begin(const ZRMCall& call) {
        const std::lock_guard lock(mutex_);
        calls_.push_back(call);
        if (queue_) {
            queue_->post([callback = callback_, call] { callback(call); });
        }
    }

  private:
    mutable std::mutex mutex_;
    std::vector<ZRMCall> calls_;
    std::shared_ptr<ZRMQueue> queue_;
    Callback callback_;
};

struct Told {
    int changed = 0;
    int active = 0;
};

class CountingDelegate final : public ZRMCallObserverDelegate {
  public:
    void connectedCallChanged(const ZRMCallObserving& /*observer*/,
                              const ZRMCall& /*call*/) override {
        told.change([](Told& counts) { ++counts.changed; });
    }
    void connectedCallStillActive(const ZRMCallObserving& /*observer*/,
                                  const ZRMCall& /*call*/) override {
        told.change([](Told& counts) { ++counts.active; });
    }
    ZRMAwaited<Told> told;
};

// Its notifications run on the main queue.
class RealNotifications final : public ZRMApplicationNotifications {
  public:
    explicit RealNotifications(std::shared_ptr<ZRMQueue> mainQueue)
        : mainQueue_(std::move(mainQueue)) {}

    [[nodiscard]] std::shared_ptr<ZRMSubscription> observe(
        ZRMApplicationNotification notification, std::function<void()> callback) override {
        if (notification == ZRMApplicationNotification::ScreenCapturedDidChange) {
            callback_ = std::move(callback);
        }
        return std::make_shared<ZRMSubscription>();
    }
    void post() { mainQueue_->post(callback_); }

  private:
    std::shared_ptr<ZRMQueue> mainQueue_;
    std::function<void()> callback_;
};

class SwitchedScreens final : public ZRMScreens {
  public:
    [[nodiscard]] std::vector<ZRMScreen> screens() const override {
        ZRMScreen screen;
        screen.isCaptured = captured.load();
        return {screen};
    }
    std::atomic<bool> captured = false;
};

}  // namespace

TEST(ZRMDetectorsStress, EachCallIsToldOfOnceHoweverManyThreadsStartAndSetTheObserver) {
    ZRMLinuxExecutor executor;
    const auto port = std::make_shared<BeginningCalls>();
    port->begin(connectedCall("under way"));
    const auto delegate = std::make_shared<CountingDelegate>();
    const auto observer = std::make_shared<ZRMCallObserver>(port, executor);
    inThreads([&](int /*thread*/) {
        observer->setDelegate(delegate);
        observer->setEventPolicy(ZRMCallInfoEventPolicy(1, 0.001));
        observer->start();
        EXPECT_EQ(observer->calls().size(), 1U);
    });
    inThreads([&](int thread) {
        for (int each = 0; each < kEach; ++each) {
            port->begin(connectedCall(std::to_string(thread) + "-" + std::to_string(each)));
            observer->setEventPolicy(ZRMCallInfoEventPolicy(1, 0.001));
        }
    });
    constexpr int kCalls = kThreads * kEach;
    EXPECT_TRUE(delegate->told.waitUntil([](const Told& told) { return told.active > kCalls; }));
    EXPECT_EQ(delegate->told.value().changed, kCalls);
    EXPECT_EQ(delegate->told.value().active, kCalls + 1);
}

TEST(ZRMDetectorsStress, TheRetriesAreRestoredWhateverCheckFindsTheRecordingOver) {
    ZRMLinuxExecutor executor;
    const auto screens = std::make_shared<SwitchedScreens>();
    const auto notifications = std::make_shared<RealNotifications>(executor.mainQueue());
    const auto detector = std::make_shared<ZRMScreenRecordingDetector>(
        ZRMScreenRecordingEventPolicy(3, 0.001), screens, notifications,
        executor.concurrentQueue(ZRMQualityOfService::Default));
    const auto reports = std::make_shared<ZRMAwaited<int>>();
    detector->startDetection(
        [reports](bool /*recording*/) { reports->change([](int& count) { ++count; }); });
    inThreads([&](int /*thread*/) {
        for (int each = 0; each < kEach; ++each) {
            screens->captured = each % 2 == 0;
            notifications->post();
        }
    });
    screens->captured = false;
    // A check that began before may still arrange another one, which then finds it over.
    for (int round = 0; round < 1000 && detector->numberOfRemainingRetryAttempts() != 3; ++round) {
        const int before = reports->value();
        notifications->post();
        ASSERT_TRUE(reports->waitUntil([before](int count) { return count > before; }));
    }
    EXPECT_EQ(detector->numberOfRemainingRetryAttempts(), 3U);
    EXPECT_TRUE(reports->waitUntil([](int count) { return count > kThreads * kEach; }));
}
