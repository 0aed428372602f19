#include "ZRMPlatform/Simulated/ZRMSimulatedUrlSession.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "ZRMPlatform/Simulated/ZRMSimulatedTransfer.h"

namespace {

constexpr std::uint64_t kNetworkThreadIdentifier = 1000;

// Absent when the URL can be loaded.
std::optional<int> refusalOfUrl(const std::string& url) {
    const auto scheme = url.find("://");
    if (scheme == std::string::npos || scheme == 0 || scheme + 3 == url.size()) {
        return ZRMUrlErrorBadUrl;
    }
    std::string name = url.substr(0, scheme);
    std::ranges::transform(name, name.begin(),
                           [](unsigned char letter) { return std::tolower(letter); });
    if (name != "http" && name != "https") {
        return ZRMUrlErrorUnsupportedUrl;
    }
    return std::nullopt;
}

}  // namespace

// Ends once: by its outcome, by a lost connection or by cancelling, whichever comes first.
class ZRMSimulatedUrlSession::Exchange : public std::enable_shared_from_this<Exchange> {
  public:
    Exchange(std::shared_ptr<ZRMSimulatedQueue> queue, ZRMSimulatedTransfer transfer,
             Completion completion)
        : queue_(std::move(queue)),
          transfer_(std::move(transfer)),
          completion_(std::move(completion)) {}

    void begin(ZRMSimulatedScheduler& scheduler) {
        time_ = scheduler.time();
        startedAt_ = time_->uptimeSeconds();
        const auto due =
            time_->momentAfter(ZRMSimulatedMoment::Clock::Uptime, transfer_.endSeconds());
        timer_ = scheduler.addTimer(queue_, due, 0, [self = shared_from_this()] {
            self->timer_.reset();
            self->deliver(self->transfer_.outcome());
        });
    }

    void breakOff(int code) {
        if (!timer_) {
            return;
        }
        std::exchange(timer_, nullptr)->cancel();
        auto result = transfer_.brokenOff(time_->uptimeSeconds() - startedAt_, code);
        queue_->post(
            [self = shared_from_this(), result = std::move(result)] { self->deliver(result); });
    }

    std::shared_ptr<void> disconnectionObserver;

  private:
    void deliver(const ZRMUrlExchange& result) {
        disconnectionObserver.reset();
        if (const auto completion = std::exchange(completion_, nullptr)) {
            completion(result);
        }
    }

    std::shared_ptr<ZRMSimulatedQueue> queue_;
    ZRMSimulatedTransfer transfer_;
    Completion completion_;
    std::shared_ptr<ZRMSimulatedTime> time_;
    double startedAt_ = 0;
    std::shared_ptr<ZRMTimerHandle> timer_;  // while the exchange is under way
};

ZRMSimulatedUrlSession::ZRMSimulatedUrlSession(std::shared_ptr<ZRMSimulatedNetwork> network,
                                               std::shared_ptr<ZRMSimulatedProcess> process,
                                               std::shared_ptr<ZRMSimulatedQueue> queue,
                                               const ZRMUrlSessionConfiguration& configuration)
    : network_(std::move(network)),
      process_(std::move(process)),
      queue_(std::move(queue)),
      configuration_(configuration) {}

ZRMSimulatedUrlSession::~ZRMSimulatedUrlSession() {
    ZRMSimulatedUrlSession::invalidateAndCancel();
}

ZRMSimulatedAnswer ZRMSimulatedUrlSession::answerTo(const ZRMUrlRequest& request) {
    if (isInvalidated_) {
        return ZRMSimulatedAnswer::withError(ZRMUrlErrorCancelled);
    }
    if (const auto refusal = refusalOfUrl(request.url)) {
        return ZRMSimulatedAnswer::withError(*refusal);
    }
    auto answer = network_->receive(request, configuration_);
    if (answer.body.size() > request.maximumResponseBytes) {
        return ZRMSimulatedAnswer::withError(ZRMUrlErrorDataLengthExceedsMaximum)
            .after(answer.delaySeconds);
    }
    return answer;
}

void ZRMSimulatedUrlSession::start(const ZRMUrlRequest& request, Completion completion) {
    if (!process_->isAlive()) {
        return;
    }
    exchange_ = std::make_shared<Exchange>(
        queue_, ZRMSimulatedTransfer(answerTo(request), configuration_), std::move(completion));
    exchange_->begin(*process_->scheduler());
    exchange_->disconnectionObserver =
        network_->observeDisconnection([weak = std::weak_ptr(exchange_)] {
            if (const auto exchange = weak.lock()) {
                exchange->breakOff(ZRMUrlErrorNetworkConnectionLost);
            }
        });
}

void ZRMSimulatedUrlSession::invalidateAndCancel() {
    isInvalidated_ = true;
    if (exchange_) {
        exchange_->breakOff(ZRMUrlErrorCancelled);
    }
}

ZRMSimulatedUrlSessionFactory::ZRMSimulatedUrlSessionFactory(
    std::shared_ptr<ZRMSimulatedNetwork> network, std::shared_ptr<ZRMSimulatedProcess> process)
    : network_(std::move(network)),
      process_(std::move(process)),
      queue_(std::make_shared<ZRMSimulatedQueue>(
          process_->scheduler(), "network", ZRMSimulatedQueue::Kind::Concurrent,
          ZRMQualityOfService::Default, kNetworkThreadIdentifier)) {}

std::shared_ptr<ZRMUrlSession> ZRMSimulatedUrlSessionFactory::makeSession(
    const ZRMUrlSessionConfiguration& configuration) {
    return std::make_shared<ZRMSimulatedUrlSession>(network_, process_, queue_, configuration);
}
