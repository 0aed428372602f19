#include "ZRMPlatform/Simulated/ZRMSimulatedUrlSession.h"

#include <algorithm>
#include <cctype>
#include <utility>

namespace {

constexpr std::uint64_t kNetworkThreadIdentifier = 1000;

ZRMError urlError(int code) {
    return {kZRMUrlErrorDomain, code};
}

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

struct Outcome {
    double afterSeconds = 0;
    ZRMUrlExchange exchange;
};

Outcome failure(double afterSeconds, int code) {
    return {afterSeconds, {{}, std::nullopt, urlError(code)}};
}

// What an answer comes to under the time-outs. Bytes come in proportion to the time.
Outcome outcomeOf(const ZRMSimulatedAnswer& answer, const ZRMUrlRequest& request,
                  const ZRMUrlSessionConfiguration& configuration) {
    const double patience =
        std::min({configuration.requestTimeoutSeconds, configuration.resourceTimeoutSeconds,
                  request.timeoutIntervalSeconds});
    if (answer.delaySeconds >= patience) {
        return failure(patience, ZRMUrlErrorTimedOut);
    }
    if (answer.errorCode) {
        return failure(answer.delaySeconds, *answer.errorCode);
    }
    Outcome outcome{answer.delaySeconds + answer.bodySeconds, {}};
    std::size_t arrived = answer.body.size();
    if (answer.lostAfterBytes && *answer.lostAfterBytes <= arrived) {
        arrived = *answer.lostAfterBytes;
        outcome.exchange.error = urlError(ZRMUrlErrorNetworkConnectionLost);
    }
    if (outcome.afterSeconds >= configuration.resourceTimeoutSeconds) {
        const double share =
            (configuration.resourceTimeoutSeconds - answer.delaySeconds) / answer.bodySeconds;
        arrived = std::min(
            arrived, static_cast<std::size_t>(share * static_cast<double>(answer.body.size())));
        outcome.afterSeconds = configuration.resourceTimeoutSeconds;
        outcome.exchange.error = urlError(ZRMUrlErrorTimedOut);
    }
    const auto end = answer.body.begin() + static_cast<std::ptrdiff_t>(arrived);
    outcome.exchange.data.assign(answer.body.begin(), end);
    outcome.exchange.response = ZRMUrlResponse{answer.status, answer.headers};
    return outcome;
}

}  // namespace

// Ends once: by its outcome, by a lost connection or by cancelling, whichever comes first.
class ZRMSimulatedUrlSession::Exchange : public std::enable_shared_from_this<Exchange> {
  public:
    Exchange(std::shared_ptr<ZRMSimulatedQueue> queue, Completion completion)
        : queue_(std::move(queue)), completion_(std::move(completion)) {}

    void begin(ZRMSimulatedScheduler& scheduler, Outcome outcome) {
        const auto due =
            scheduler.time()->momentAfter(ZRMSimulatedMoment::Clock::Uptime, outcome.afterSeconds);
        const auto task = [self = shared_from_this(), result = std::move(outcome.exchange)] {
            self->timer_.reset();
            self->deliver(result);
        };
        timer_ = scheduler.addTimer(queue_, due, 0, task);
    }

    void breakOff(int code) {
        if (!timer_ || !completion_) {
            return;
        }
        std::exchange(timer_, nullptr)->cancel();
        queue_->post([self = shared_from_this(), code] {
            self->deliver({{}, std::nullopt, urlError(code)});
        });
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
    Completion completion_;
    std::shared_ptr<ZRMTimerHandle> timer_;
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

void ZRMSimulatedUrlSession::start(const ZRMUrlRequest& request, Completion completion) {
    if (!process_->isAlive()) {
        return;
    }
    exchange_ = std::make_shared<Exchange>(queue_, std::move(completion));
    if (const auto refusal = refusalOfUrl(request.url)) {
        exchange_->begin(*process_->scheduler(), failure(0, *refusal));
        return;
    }
    const auto answer = network_->receive(request, configuration_);
    exchange_->begin(*process_->scheduler(), outcomeOf(answer, request, configuration_));
    exchange_->disconnectionObserver =
        network_->observeDisconnection([weak = std::weak_ptr(exchange_)] {
            if (const auto exchange = weak.lock()) {
                exchange->breakOff(ZRMUrlErrorNetworkConnectionLost);
            }
        });
}

void ZRMSimulatedUrlSession::invalidateAndCancel() {
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
