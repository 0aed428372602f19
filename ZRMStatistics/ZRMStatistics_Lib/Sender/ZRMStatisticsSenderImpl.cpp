#include "ZRMStatistics/ZRMStatistics_Lib/Sender/ZRMStatisticsSenderImpl.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Operations/ZRMBlockOperation.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/RunLoop/ZRMRunLoop.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Url/ZRMUrl.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Sender/ZRMStatisticsRequest.h"

namespace {

// One upload ready behind each that runs keeps the queue busy for as long as an answer takes. Once
// answers come, more are made ready at a time: bytes may have to wait for a write to the disk.
constexpr std::size_t kReadyAtFirst = std::size_t{2} * ZRMStatisticsSenderImpl::kMaxUploads;
constexpr std::size_t kReadyAtMost = 64;
constexpr std::size_t kReadyBytes = std::size_t{128} * 1024;

std::shared_ptr<ZRMReachabilityInspector> inspectorForUrl(
    const std::shared_ptr<const ZRMPlatform>& platform, const std::string& text) {
    const auto url = ZRMUrl::fromText(text);
    if (url && url->host() && !url->host()->empty()) {
        return ZRMReachabilityInspector::inspectorWithHostName(platform, *url->host());
    }
    return ZRMReachabilityInspector::inspectorForInternetConnection(platform);
}

}  // namespace

std::shared_ptr<ZRMStatisticsSenderImpl> ZRMStatisticsSenderImpl::create(
    std::shared_ptr<const ZRMPlatform> platform, const std::string& url,
    const std::shared_ptr<ZRMStatisticsCustomHeadersProvider>& customHeadersProvider,
    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider) {
    std::shared_ptr<ZRMStatisticsSenderImpl> sender(new ZRMStatisticsSenderImpl(
        std::move(platform), url, customHeadersProvider, std::move(serverTimeProvider)));
    sender->followReachability();
    return sender;
}

ZRMStatisticsSenderImpl::ZRMStatisticsSenderImpl(
    std::shared_ptr<const ZRMPlatform> platform, const std::string& url,
    const std::shared_ptr<ZRMStatisticsCustomHeadersProvider>& customHeadersProvider,
    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider)
    : platform_(std::move(platform)),
      url_(url),
      customHeadersProvider_(customHeadersProvider),
      serverTimeProvider_(std::move(serverTimeProvider)),
      reachabilityInspector_(inspectorForUrl(platform_, url_)),
      observers_(platform_->consoleLog),
      queue_(platform_->executor, zrm_queueNameForClass("ZRMStatisticsSenderImpl"), kMaxUploads) {}

void ZRMStatisticsSenderImpl::addObserver(
    const std::shared_ptr<ZRMStatisticsSenderObserver>& observer) {
    observers_.addObserver(observer);
}

void ZRMStatisticsSenderImpl::removeObserver(const ZRMStatisticsSenderObserver* observer) {
    observers_.removeObserver(observer);
}

void ZRMStatisticsSenderImpl::followReachability() {
    auto& inspector = *reachabilityInspector_;
    inspector.addObserver(shared_from_this());
    const bool isFollowed =
        inspector.startNotifierWithRunLoop(ZRMRunLoop::mainRunLoop(platform_->executor));
    const auto isOutOfReach = [&] {
        return inspector.currentReachabilityStatus() == ZRMNetworkStatus::NotReachable;
    };
    // Only changes are told of, and only to who follows: without them the queue would stay shut.
    if (isFollowed && isOutOfReach()) {
        queue_.setSuspended(true);
        // A change that was told of before the suspension is not told of again.
        if (!isOutOfReach()) {
            queue_.setSuspended(false);
        }
    }
}

void ZRMStatisticsSenderImpl::inspector(ZRMReachabilityInspector& /*inspector*/,
                                        ZRMNetworkStatus didChangeStatus) {
    queue_.setSuspended(didChangeStatus == ZRMNetworkStatus::NotReachable);
}

std::shared_ptr<const ZRMStatisticsSenderImpl::Headers>
ZRMStatisticsSenderImpl::currentCustomHeaders() {
    const auto provider = customHeadersProvider_.lock();
    auto headers = provider ? provider->customHeaders() : Headers();
    const ZRMLockGuard lock(mutex_);
    // Thousands of waiting uploads share one copy.
    if (!lastCustomHeaders_ || *lastCustomHeaders_ != headers) {
        lastCustomHeaders_ = std::make_shared<const Headers>(std::move(headers));
    }
    return lastCustomHeaders_;
}

void ZRMStatisticsSenderImpl::sendStatisticsData(const std::shared_ptr<ZRMStatisticsData>& data) {
    if (!data->beginUpload()) {
        return;
    }
    Upload upload{data, serverTimeProvider_->getTime(), currentCustomHeaders()};
    {
        const ZRMLockGuard lock(mutex_);
        if (enqueued_ >= kReadyAtFirst) {
            data->turnIntoFault();
        }
        waiting_.push_back(std::move(upload));
        if (enqueued_ >= kReadyAtFirst) {
            return;
        }
    }
    fillQueue(kReadyAtFirst);
}

bool ZRMStatisticsSenderImpl::isNextReady(std::size_t limit) const {
    if (waiting_.empty() || enqueued_ >= limit) {
        return false;
    }
    return enqueued_ < kReadyAtFirst ||
           enqueuedBytes_ + waiting_.front().data->length() <= kReadyBytes;
}

// One thread at a time fills, so that uploads reach the queue in their order.
void ZRMStatisticsSenderImpl::fillQueue(std::size_t limit) {
    {
        const ZRMLockGuard lock(mutex_);
        if (std::exchange(isFilling_, true)) {
            return;
        }
    }
    while (const auto upload = takeNext(limit)) {
        if (!enqueue(*upload)) {
            const ZRMLockGuard lock(mutex_);
            letGo(*upload->data);
        }
    }
}

std::optional<ZRMStatisticsSenderImpl::Upload> ZRMStatisticsSenderImpl::takeNext(
    std::size_t limit) {
    const ZRMLockGuard lock(mutex_);
    isFilling_ = isNextReady(limit);
    if (!isFilling_) {
        return std::nullopt;
    }
    auto upload = std::move(waiting_.front());
    waiting_.pop_front();
    ++enqueued_;
    enqueuedBytes_ += upload.data->length();
    return upload;
}

void ZRMStatisticsSenderImpl::letGo(const ZRMStatisticsData& data) {
    --enqueued_;
    enqueuedBytes_ -= data.length();
}

bool ZRMStatisticsSenderImpl::enqueue(const Upload& upload) {
    auto bytes = upload.data->bytes();
    if (!bytes) {
        upload.data->abandonUpload();
        zrm_logError(this, "Can't read stored statistic to send it");
        return false;
    }
    const auto request = std::make_shared<ZRMUrlRequestOperation>(
        platform_,
        zrm_statisticsRequest(url_, std::move(bytes), upload.serverTimeMilliseconds,
                              *upload.customHeaders),
        true);
    const auto completion = ZRMBlockOperation::blockOperationWithBlock(
        [weak = weak_from_this(), request, data = upload.data] {
            if (const auto self = weak.lock()) {
                self->completeUpload(*request, data);
            }
        });
    completion->addDependency(request);
    queue_.addOperations({request, completion});
    return true;
}

void ZRMStatisticsSenderImpl::completeUpload(const ZRMUrlRequestOperation& operation,
                                             const std::shared_ptr<ZRMStatisticsData>& data) {
    if (const auto error = operation.error()) {
        data->abandonUpload();
        observers_.notifyWithBlock([&](ZRMStatisticsSenderObserver& observer) {
            observer.statisticsSenderDidFailToSendData(*this, data, *error);
        });
    } else {
        data->endUpload();
        const auto response = operation.response();
        const auto* date = response ? response->headers.find("Date") : nullptr;
        if (date != nullptr && !date->empty()) {
            serverTimeProvider_->setTime(*date);
        }
        observers_.notifyWithBlock([&](ZRMStatisticsSenderObserver& observer) {
            observer.statisticsSenderDidSendData(*this, data);
        });
    }
    {
        const ZRMLockGuard lock(mutex_);
        letGo(*data);
        if (enqueued_ > kReadyAtMost / 2) {
            return;
        }
    }
    fillQueue(kReadyAtMost);
}
