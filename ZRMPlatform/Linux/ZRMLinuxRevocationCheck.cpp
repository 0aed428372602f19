#include "ZRMPlatform/Linux/ZRMLinuxRevocationCheck.h"

#include <algorithm>
#include <utility>

#include "ZRMPlatform/Linux/ZRMLinuxCrl.h"
#include "ZRMPlatform/Ports/ZRMTrust.h"

namespace {

constexpr int kStatusOk = 200;

ZRMUrlRequest ocspRequest(const std::string& url, const ZRMLinuxOcspQuestion& question) {
    ZRMUrlRequest request;
    request.method = "POST";
    request.url = url;
    request.headers.set("Content-Type", "application/ocsp-request");
    request.headers.set("Accept", "application/ocsp-response");
    request.body = std::make_shared<const ZRMData>(question.der());
    request.maximumResponseBytes = kZRMMaximumOcspBytes;
    return request;
}

ZRMUrlRequest crlRequest(const std::string& url) {
    ZRMUrlRequest request;
    request.url = url;
    request.maximumResponseBytes = kZRMMaximumCrlBytes;
    return request;
}

}  // namespace

ZRMLinuxRevocationCheck::ZRMLinuxRevocationCheck(std::shared_ptr<ZRMClock> clock,
                                                 std::shared_ptr<ZRMUrlSessionFactory> urlSessions,
                                                 std::shared_ptr<ZRMLinuxRevocationCache> cache,
                                                 std::vector<ZRMLinuxX509> path,
                                                 std::uint32_t methods)
    : clock_(std::move(clock)),
      urlSessions_(std::move(urlSessions)),
      cache_(std::move(cache)),
      path_(std::move(path)),
      methods_(methods) {}

void ZRMLinuxRevocationCheck::start(Completion completion) {
    completion_ = std::move(completion);
    endUptimeSeconds_ = clock_->uptimeSeconds() + kSecondsAltogether;
    if (methods_ == ZRMTrustRevocationNone) {
        complete(std::nullopt);
        return;
    }
    proceed();
}

void ZRMLinuxRevocationCheck::proceed() {
    // The anchor, which ends the path, is trusted as it is.
    while (index_ + 1 < path_.size()) {
        if (!isPrepared_) {
            isPrepared_ = true;
            if (settle(cache_->find(path_[index_].get(), clock_->now()))) {
                continue;
            }
            prepareQuestions();
        }
        if (questions_.empty() || clock_->uptimeSeconds() >= endUptimeSeconds_) {
            ++index_;
            isPrepared_ = false;
            continue;
        }
        const auto question = std::move(questions_.front());
        questions_.pop_front();
        ask(question);
        return;
    }
    complete(std::nullopt);
}

void ZRMLinuxRevocationCheck::prepareQuestions() {
    questions_.clear();
    auto* const certificate = path_[index_].get();
    if ((methods_ & ZRMTrustRevocationOcsp) != 0) {
        for (auto& url : zrm_ocspUrls(certificate)) {
            questions_.push_back({std::move(url), true});
        }
    }
    if ((methods_ & ZRMTrustRevocationCrl) != 0) {
        for (auto& url : zrm_crlUrls(certificate)) {
            questions_.push_back({std::move(url), false});
        }
    }
}

void ZRMLinuxRevocationCheck::ask(const Question& question) {
    const auto ocsp = question.isOcsp
                          ? std::make_shared<ZRMLinuxOcspQuestion>(path_[index_], path_[index_ + 1])
                          : nullptr;
    auto request = ocsp ? ocspRequest(question.url, *ocsp) : crlRequest(question.url);
    ZRMUrlSessionConfiguration configuration;
    configuration.cachePolicy = ZRMUrlRequestCachePolicy::ReloadIgnoringLocalCacheData;
    const double left = endUptimeSeconds_ - clock_->uptimeSeconds();
    configuration.requestTimeoutSeconds = std::min(kSecondsPerQuestion, left);
    configuration.resourceTimeoutSeconds = configuration.requestTimeoutSeconds;
    request.timeoutIntervalSeconds = configuration.requestTimeoutSeconds;
    const auto session = urlSessions_->makeSession(configuration);
    session_ = session;
    session->start(request, [weak = weak_from_this(), ocsp](const ZRMUrlExchange& exchange) {
        if (const auto self = weak.lock()) {
            self->answered(exchange, ocsp);
        }
    });
}

void ZRMLinuxRevocationCheck::answered(const ZRMUrlExchange& exchange,
                                       const std::shared_ptr<ZRMLinuxOcspQuestion>& ocsp) {
    ZRMLinuxRevocationAnswer answer;
    if (!exchange.error && exchange.response && exchange.response->statusCode == kStatusOk) {
        const auto now = clock_->now();
        answer = ocsp ? ocsp->read(exchange.data, now)
                      : zrm_readCrl(exchange.data, path_[index_], path_[index_ + 1], now);
        cache_->keep(path_[index_].get(), answer);
    }
    settle(answer);
    proceed();
}

bool ZRMLinuxRevocationCheck::settle(const ZRMLinuxRevocationAnswer& answer) {
    switch (answer.status) {
        case ZRMLinuxRevocationStatus::NoAnswer:
            return false;
        case ZRMLinuxRevocationStatus::Good:
            ++index_;
            isPrepared_ = false;
            return true;
        case ZRMLinuxRevocationStatus::Revoked:
            complete(index_);
            index_ = path_.size();
            return true;
    }
    return false;
}

void ZRMLinuxRevocationCheck::complete(std::optional<std::size_t> revoked) {
    if (const auto completion = std::exchange(completion_, nullptr)) {
        completion(revoked);
    }
}
