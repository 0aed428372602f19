// The host feeds everything at once from many threads while observers come and go.
#include <array>
#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "ZRMPlatform/HostFed/ZRMHostFedPorts.h"
#include "ZRMPlatform/Linux/ZRMLinuxPlatform.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestWaiting.h"

namespace {

constexpr int kThreads = 8;
constexpr int kRounds = 2000;

class ZRMHostSignalsStress : public testing::Test {
  protected:
    // Runs the body in many threads at once; each is given its number.
    static void inThreads(const std::function<void(int)>& body) {
        std::vector<std::thread> threads;
        for (int number = 0; number < kThreads; ++number) {
            threads.emplace_back(body, number);
        }
        for (auto& thread : threads) {
            thread.join();
        }
    }
    void waitForEndOf(const std::shared_ptr<ZRMQueue>& queue) {
        ZRMAwaited<bool> done;
        queue->post([&] { done.set(true); });
        ASSERT_TRUE(done.waitUntil([](bool value) { return value; }));
    }

    void feedEvents(int number, int round) {
        signals_->calls.update({.uuid = std::to_string(number), .hasEnded = round % 3 == 2});
        signals_->notifications.post(ZRMApplicationNotification::UserDidTakeScreenshot);
        signals_->screens.setCaptured(round % 2 == 0);
        signals_->screens.connect({.hasMirroredScreen = true});
        signals_->screens.disconnect();
        signals_->location.setStatus(round % 5);
        signals_->location.setServicesEnabled(round % 2 == 0);
        signals_->location.deliver({{.latitude = 1}});
        signals_->location.fail(ZRMError(kZRMLocationErrorDomain, round));
    }
    // And reads what is answered.
    void feedWords(int round) {
        signals_->biometrics.tell({true, ZRMData(8), std::nullopt});
        signals_->wifi.tell(ZRMWifiNetwork{"network", std::nullopt});
        signals_->carriers.tell({{.name = "carrier"}});
        signals_->tunnels.tell({"utun0"});
        signals_->battery.tell({1, ZRMBatteryState::Full});
        signals_->lowPowerMode.tell(round % 2 == 0);
        signals_->deviceName.tell("device " + std::to_string(round));
        if (round % 16 == 0) {
            signals_->forgetMachine();
        }
        (void)platform_->localAuthentication->evaluateBiometrics();
        (void)platform_->device->name();
        (void)signals_->screens.joinedTo({});
    }

    std::shared_ptr<ZRMHostSignals> signals_ = std::make_shared<ZRMHostSignals>();
    std::shared_ptr<const ZRMPlatform> platform_ = zrm_makeLinuxPlatform({.hostSignals = signals_});
};

class CountingDelegate final : public ZRMLocationManagerDelegate {
  public:
    void locationsUpdated(const std::vector<ZRMLocation>& locations) override {
        heard += locations.size();
    }
    void locationFailed(const ZRMError&) override { ++heard; }
    void authorizationChanged(int) override { ++heard; }

    std::size_t heard = 0;  // on the main queue
};

}  // namespace

// Two flags of a call count its updates modulo four, so that a lost or exchanged one shows.
TEST_F(ZRMHostSignalsStress, NoUpdateOfACallIsLostOrComesOutOfOrder) {
    struct Seen {
        std::array<int, kThreads> updates{};
        int misplaced = 0;
    };
    ZRMAwaited<Seen> seen;
    const auto subscription = platform_->calls->observeCalls(
        platform_->executor->concurrentQueue(ZRMQualityOfService::Default),
        [&seen](const ZRMCall& call) {
            seen.change([&call](Seen& all) {
                auto& updates = all.updates.at(static_cast<std::size_t>(std::stoi(*call.uuid)));
                all.misplaced +=
                    call.isOnHold == (updates % 2 == 1) && call.isOutgoing == (updates % 4 >= 2)
                        ? 0
                        : 1;
                ++updates;
            });
        });
    inThreads([this](int number) {
        for (int update = 0; update < kRounds; ++update) {
            signals_->calls.update({.uuid = std::to_string(number),
                                    .hasEnded = update + 1 == kRounds,
                                    .isOutgoing = update % 4 >= 2,
                                    .isOnHold = update % 2 == 1});
        }
    });
    EXPECT_TRUE(seen.waitUntil([](const Seen& all) {
        return std::ranges::all_of(all.updates, [](int count) { return count == kRounds; });
    }));
    EXPECT_EQ(seen.value().misplaced, 0);
    EXPECT_TRUE(platform_->calls->calls().empty());
}

TEST_F(ZRMHostSignalsStress, EverythingIsFedAtOnceWhileObserversComeAndGo) {
    std::atomic<int> notifications = 0;
    const auto lasting = platform_->notifications->observe(
        ZRMApplicationNotification::UserDidTakeScreenshot, [&] { ++notifications; });
    std::atomic<bool> isOver = false;
    const auto mainQueue = platform_->executor->mainQueue();
    const auto delegate = std::make_shared<CountingDelegate>();
    std::thread comer([&] {
        while (!isOver) {
            const auto call = platform_->calls->observeCalls(
                platform_->executor->makeSerialQueue("comer", ZRMQualityOfService::Default),
                [this](const ZRMCall&) { (void)platform_->calls->calls(); });
            const auto screen = platform_->notifications->observe(
                ZRMApplicationNotification::ScreenCapturedDidChange, [] {});
            ZRMAwaited<bool> done;
            mainQueue->post([&] {
                const auto manager = platform_->locationServices->makeLocationManager(10);
                manager->setDelegate(delegate);
                manager->startUpdatingLocation();
                mainQueue->post([&, manager] {
                    manager->stopUpdatingLocation();
                    done.set(true);
                });
            });
            ASSERT_TRUE(done.waitUntil([](bool value) { return value; }));
        }
    });
    inThreads([this](int number) {
        for (int round = 0; round < kRounds; ++round) {
            feedEvents(number, round);
            feedWords(round);
        }
    });
    isOver = true;
    comer.join();
    waitForEndOf(mainQueue);
    waitForEndOf(mainQueue);
    EXPECT_EQ(notifications, kThreads * kRounds);
    EXPECT_FALSE(signals_->location.isWanted());
    EXPECT_TRUE(platform_->localAuthentication->evaluateBiometrics().canEvaluate);
}
