// A host's main loop that knows how long its tasks took.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

#include "ZRMPlatform/Ports/ZRMQueue.h"

// Runs in a thread of its own from the first task on, which is never joined: the queue must live
// as long as the process.
class ZRMTimedMainQueue final : public ZRMQueue {
  public:
    [[nodiscard]] const std::string& label() const override { return label_; }
    void post(ZRMTask task) override;
    std::shared_ptr<ZRMTimerHandle> postAfter(double delaySeconds, ZRMTask task) override;
    std::shared_ptr<ZRMTimerHandle> postEvery(double periodSeconds, ZRMTask task) override;
    [[nodiscard]] bool isCurrent() const override;

    // The longest task since the last call, in seconds.
    double takeLongestTask();

  private:
    using Clock = std::chrono::steady_clock;
    struct Timer;

    void add(Clock::time_point due, ZRMTask task);
    std::shared_ptr<ZRMTimerHandle> addTimer(double delaySeconds, double periodSeconds,
                                             ZRMTask task);
    void arm(const std::shared_ptr<Timer>& timer, double delaySeconds);
    void serve();

    const std::string label_ = "main";
    std::mutex mutex_;  // guards what follows
    std::condition_variable changed_;
    std::multimap<Clock::time_point, ZRMTask> tasks_;  // those due at one moment in their order
    bool isStarted_ = false;
    std::thread::id thread_;
    double longestSeconds_ = 0;
};
