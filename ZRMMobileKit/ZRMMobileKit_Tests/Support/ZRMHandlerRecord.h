// Records how a completion handler was called.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "ZRMMobileKit/ZRMMobileService.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

// Handlers made from one record share it; they may outlive it. One thread.
class ZRMHandlerRecord {
  public:
    struct Call {
        std::optional<ZRMError> error;
        bool onMainQueue = false;
    };

    ZRMMobileService::CompletionHandler handler() const {
        return [calls = calls_](const std::optional<ZRMError>& error) {
            calls->push_back({error, ZRMPlatform::current()->executor->mainQueue()->isCurrent()});
        };
    }

    [[nodiscard]] const std::vector<Call>& calls() const { return *calls_; }
    [[nodiscard]] std::size_t count() const { return calls_->size(); }
    // Called once, on the main queue, without an error.
    [[nodiscard]] bool succeededOnMain() const {
        return count() == 1 && calls_->front().onMainQueue && !calls_->front().error;
    }
    // The code of the one call's error; absent when there was no such call.
    [[nodiscard]] std::optional<std::int64_t> code() const {
        return count() == 1 && calls_->front().error ? std::optional(calls_->front().error->code())
                                                     : std::nullopt;
    }
    [[nodiscard]] bool onMainQueue() const { return count() == 1 && calls_->front().onMainQueue; }

  private:
    std::shared_ptr<std::vector<Call>> calls_ = std::make_shared<std::vector<Call>>();
};
