// Many threads report while the service activates, on the real device body. The thread sanitizer is
// the second reader of this test.
#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include <gtest/gtest.h>

#include "ZRMMobileKit/ZRMMobileService.h"
#include "ZRMPlatform/Linux/ZRMLinuxPlatform.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

constexpr int kThreads = 8;
constexpr int kReportsEach = 40;

// Counts the calls of each handler and waits until every handler was called.
class HandlerCounts {
  public:
    ZRMMobileService::CompletionHandler handler() {
        const std::lock_guard lock(mutex_);
        const auto index = calls_.size();
        calls_.push_back(0);
        return [this, index](const std::optional<ZRMError>& error) {
            const std::lock_guard callLock(mutex_);
            ++calls_[index];
            ++called_;
            if (error) {
                codes_.push_back(error->code());
            }
            changed_.notify_all();
        };
    }
    bool waitForAll() {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(120),
                                 [this] { return called_ >= calls_.size(); });
    }
    bool everyHandlerWasCalledOnce() {
        const std::lock_guard lock(mutex_);
        return std::ranges::all_of(calls_, [](int calls) { return calls == 1; });
    }
    bool errorsAreAmong(const std::vector<std::int64_t>& expected) {
        const std::lock_guard lock(mutex_);
        return std::ranges::all_of(codes_, [&expected](std::int64_t code) {
            return std::ranges::find(expected, code) != expected.end();
        });
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<int> calls_;
    std::size_t called_ = 0;
    std::vector<std::int64_t> codes_;
};

void report(ZRMMobileService& service, HandlerCounts& counts, int index) {
    switch (index % 8) {
        case 0:
            service.activateWithCompletionHandler(counts.handler());
            break;
        case 1:
            service.sendLogin("user", ZRMLoginResult::Success, counts.handler());
            break;
        case 2:
            service.sendLogoutWithCompletionHandler(counts.handler());
            break;
        case 3:
            service.sendSessionId("session", counts.handler());
            break;
        case 4:
            service.sendUINavigationEvent("point", counts.handler());
            break;
        case 5:
            service.analyzeEnvironmentWithCompletionHandler(counts.handler());
            break;
        case 6:
            static_cast<void>(service.deviceTag());
            service.sendGeoLocationWithCompletionHandler(counts.handler());
            break;
        default:
            static_cast<void>(service.pendingEventCount());
            service.startWithCompletionHandler(counts.handler());
            break;
    }
}

void reportFromEveryThread(ZRMMobileService& service, HandlerCounts& counts) {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&service, &counts, thread] {
            for (int index = 0; index < kReportsEach; ++index) {
                report(service, counts, thread + index);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
}

}  // namespace

TEST(ZRMMobileServiceStress, EveryHandlerIsCalledOnceWhileEightThreadsReportDuringActivation) {
    const ZRMTestDirectory home;
    ZRMLinuxPlatformOptions options;
    options.homeDirectory = home.path();
    options.resourcesDirectory = ZRM_SOURCE_DIR "/ZRMStatistics/Resources";
    const ZRMScopedPlatform installed(zrm_makeLinuxPlatform(options));

    // Nothing listens at the default endpoint on the loopback.
    const auto service = ZRMMobileService::createServiceWithConfiguration(
        ZRMMobileServiceConfiguration::configuration());
    HandlerCounts duringActivation;
    reportFromEveryThread(*service, duringActivation);
    EXPECT_TRUE(duringActivation.waitForAll());
    EXPECT_TRUE(duringActivation.everyHandlerWasCalledOnce());
    EXPECT_TRUE(duringActivation.errorsAreAmong({3, 12}));

    HandlerCounts whileActive;
    reportFromEveryThread(*service, whileActive);
    EXPECT_TRUE(whileActive.waitForAll());
    EXPECT_TRUE(whileActive.everyHandlerWasCalledOnce());
    EXPECT_TRUE(whileActive.errorsAreAmong({12}));
    EXPECT_TRUE(service->deviceTag().has_value());
    EXPECT_GE(service->pendingEventCount(), std::size_t{kThreads * kReportsEach / 8 * 3});
}
