// A queue whose tasks run when the test says so.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <utility>

#include "ZRMPlatform/Ports/ZRMQueue.h"

// One thread.
class ZRMHeldQueue final : public ZRMQueue {
  public:
    [[nodiscard]] const std::string& label() const override { return label_; }
    void post(ZRMTask task) override { tasks_.push_back(std::move(task)); }
    std::shared_ptr<ZRMTimerHandle> postAfter(double /*delaySeconds*/, ZRMTask task) override {
        post(std::move(task));
        return nullptr;
    }
    std::shared_ptr<ZRMTimerHandle> postEvery(double /*periodSeconds*/, ZRMTask task) override {
        post(std::move(task));
        return nullptr;
    }
    [[nodiscard]] bool isCurrent() const override { return isRunning_; }

    [[nodiscard]] std::size_t size() const { return tasks_.size(); }
    // The oldest, out of the queue.
    [[nodiscard]] ZRMTask take() {
        auto task = std::move(tasks_.front());
        tasks_.pop_front();
        return task;
    }
    void runAll() {
        isRunning_ = true;
        while (!tasks_.empty()) {
            take()();
        }
        isRunning_ = false;
    }

  private:
    std::string label_ = "held";
    std::deque<ZRMTask> tasks_;
    bool isRunning_ = false;
};
