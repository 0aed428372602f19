// An internal service that records what it is asked and answers what was set.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMDeviceTagProvider.h"
#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMInternalService.h"

// Answers at once, or, while it holds back, when told to.
class ZRMFakeInternalService : public ZRMInternalService {
  public:
    std::optional<ZRMError> activationError;
    std::optional<ZRMError> analysisError;
    std::optional<ZRMError> eventError;
    std::optional<ZRMError> afterStartError;
    bool running = false;
    bool holdsBack = false;
    std::size_t pendingEvents = 0;
    std::size_t unstoredEvents = 0;
    std::vector<std::string> calls;

    void activateWithCompletionHandler(const CompletionHandler& completionHandler) override {
        calls.emplace_back("activate");
        running = !activationError.has_value();
        answer(completionHandler, activationError);
    }
    [[nodiscard]] bool isRunning() const override { return running; }
    void analyzeEnvironmentWithCompletionHandler(
        const CompletionHandler& completionHandler) override {
        calls.emplace_back("analyze");
        answer(completionHandler, analysisError);
    }
    void sendEvent(ZRMMobileServiceEventType event, const std::optional<std::string>& value,
                   const std::optional<std::string>& result,
                   const std::optional<std::string>& userId,
                   const CompletionHandler& completionHandler) override {
        calls.push_back("send " + std::to_string(static_cast<int>(event)) + " " +
                        value.value_or("absent") + " " + result.value_or("absent") + " " +
                        userId.value_or("absent"));
        answer(completionHandler, eventError);
    }
    void performAfterStartActionsWithCompletionHandler(
        const CompletionHandler& completionHandler) override {
        calls.emplace_back("afterStart");
        answer(completionHandler, afterStartError);
    }
    [[nodiscard]] std::size_t pendingEventCount() const override { return pendingEvents; }
    [[nodiscard]] std::size_t unstoredEventCount() const override { return unstoredEvents; }

    // Gives the answers held back so far.
    void giveAnswers() {
        for (auto& giveAnswer : std::exchange(heldBack_, {})) {
            giveAnswer();
        }
    }

  private:
    void answer(const CompletionHandler& completionHandler, const std::optional<ZRMError>& error) {
        if (holdsBack) {
            heldBack_.emplace_back([completionHandler, error] { completionHandler(error); });
        } else {
            completionHandler(error);
        }
    }

    std::vector<std::function<void()>> heldBack_;
};

// The same, and it knows the tags of the device.
class ZRMFakeTaggedService final : public ZRMFakeInternalService, public ZRMDeviceTagProvider {
  public:
    std::string tag = "tag";
    std::string secureTag = "secure";

    [[nodiscard]] std::string deviceTag() const override { return tag; }
    [[nodiscard]] std::string secureDeviceTag() const override { return secureTag; }
};
