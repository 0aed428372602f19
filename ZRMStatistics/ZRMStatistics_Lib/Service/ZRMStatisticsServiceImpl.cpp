#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsServiceImpl.h"

#include <string>
#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMCreateStatisticOperation.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMDeleteStatisticOperation.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMStatisticsTime.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMUpdateStatisticOperation.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Service/ZRMStatisticsResendPlan.h"

namespace {

std::string contentText(const char* what, const void* identity, std::size_t length) {
    return what + (" event with content: " + zrm_addressText(identity)) + " (" +
           std::to_string(length) + " bytes)";
}

// Parameters of an event that is gone.
class TakenEvent final : public ZRMStatisticsEvent {
  public:
    explicit TakenEvent(ZRMDictionary parameters) : parameters_(std::move(parameters)) {}
    [[nodiscard]] ZRMDictionary parameters() const override { return parameters_; }

  private:
    ZRMDictionary parameters_;
};

}  // namespace

ZRMStatisticsServiceImpl::ZRMStatisticsServiceImpl(
    std::shared_ptr<const ZRMPlatform> platform,
    std::shared_ptr<ZRMStatisticsStorage> statisticsStorage,
    std::shared_ptr<ZRMStatisticsSender> statisticsSender,
    std::shared_ptr<ZRMServerTimeProvider> serverTimeProvider, std::int64_t maxStorageSize,
    ZRMStatisticsBodyMaker bodyMaker)
    : platform_(std::move(platform)),
      storage_(std::move(statisticsStorage)),
      sender_(std::move(statisticsSender)),
      serverTimeProvider_(std::move(serverTimeProvider)),
      maxStorageSize_(maxStorageSize),
      bodyMaker_(std::move(bodyMaker)),
      queue_(std::make_shared<ZRMStatisticsStoreQueue>(
          platform_->executor, zrm_queueNameForClass("ZRMStatisticsServiceImpl"))) {}

ZRMStatisticsServiceImpl::~ZRMStatisticsServiceImpl() {
    stop();
}

std::shared_ptr<ZRMStatisticsDataSource> ZRMStatisticsServiceImpl::dataSource() const {
    const ZRMLockGuard lock(mutex_);
    return dataSource_;
}

void ZRMStatisticsServiceImpl::start() {
    const auto pipeline = storage_ ? makePipeline() : nullptr;
    bool wasStarted = false;
    {
        const ZRMLockGuard lock(mutex_);
        wasStarted = std::exchange(isStarted_, true);
        // One for all starts, so that events keep their order over a stop between them.
        pipeline_ = pipeline_ ? pipeline_ : pipeline;
    }
    if (wasStarted) {
        zrm_logVerbose(this, "Service already started");
        return;
    }
    sender_->addObserver(shared_from_this());
    if (!storage_) {
        return;
    }
    // In one block, so that no save comes between following the store and resending what it holds.
    storage_->context()->performBlockAndWait([this] {
        const auto dataSource = ZRMStatisticsDataSource::create(storage_->context());
        dataSource->addObserver(shared_from_this());
        {
            const ZRMLockGuard lock(mutex_);
            dataSource_ = dataSource;
        }
        // Ahead of all that is sent from now on; the caller need not wait until thousands of
        // records are fetched. The time is that of the start: an answer may set the clock
        // meanwhile.
        const auto now = zrm_statisticsTimestamp(*serverTimeProvider_, platform_->clock->now());
        queue_->addBlock([weak = weak_from_this(), dataSource, now] {
            const auto self = weak.lock();
            if (self && self->dataSource() == dataSource) {
                self->sendAllStatisticsFromStorage(*dataSource, now);
            }
        });
    });
}

void ZRMStatisticsServiceImpl::stop() {
    bool wasStarted = false;
    std::shared_ptr<ZRMStatisticsDataSource> dataSource;
    {
        const ZRMLockGuard lock(mutex_);
        wasStarted = std::exchange(isStarted_, false);
        dataSource = std::exchange(dataSource_, nullptr);
    }
    sender_->removeObserver(this);
    if (dataSource) {
        dataSource->removeObserver(this);
    } else if (!wasStarted) {
        zrm_logVerbose(this, "Service already stopped");
    }
}

std::optional<ZRMStatisticsServiceImpl::Entrance> ZRMStatisticsServiceImpl::entrance() const {
    {
        const ZRMLockGuard lock(mutex_);
        if (isStarted_) {
            return Entrance{pipeline_};
        }
    }
    platform_->consoleLog->write("ZRMStatisticsService not started\n");
    return std::nullopt;
}

void ZRMStatisticsServiceImpl::send(const ZRMStatisticsEvent& event, std::int16_t priority) {
    const auto way = entrance();
    if (!way) {
        return;
    }
    if (way->pipeline) {
        put(*way->pipeline, std::make_shared<TakenEvent>(event.parameters()), priority);
    } else {
        sendWithoutStorage(event);
    }
}

void ZRMStatisticsServiceImpl::send(std::shared_ptr<const ZRMStatisticsEvent> event,
                                    std::int16_t priority) {
    const auto way = entrance();
    if (!way) {
        return;
    }
    if (way->pipeline) {
        put(*way->pipeline, std::move(event), priority);
    } else {
        sendWithoutStorage(*event);
    }
}

void ZRMStatisticsServiceImpl::put(ZRMStatisticsPipeline& pipeline,
                                   std::shared_ptr<const ZRMStatisticsEvent> event,
                                   std::int16_t priority) {
    ++*unstored_;
    pipeline.put(std::move(event), priority);
}

std::shared_ptr<ZRMStatisticsPipeline> ZRMStatisticsServiceImpl::makePipeline() {
    auto encode = [bodyMaker = bodyMaker_](const ZRMStatisticsEvent& event) {
        return bodyMaker.bodyWithParameters(event.parameters());
    };
    auto store = [weak = weak_from_this(), queue = queue_, context = storage_->context(),
                  time = serverTimeProvider_, unstored = unstored_](const auto& events) {
        const auto self = weak.lock();
        for (const auto& [body, priority] : events) {
            if (!body) {
                --*unstored;
                continue;
            }
            zrm_logVerbose(self.get(), [&, &bytes = body] {
                return contentText("Send", bytes.get(), bytes->size());
            });
            if (self) {
                self->deleteAllStatisticsFromStorageIfNeeded();
            }
            const auto operation =
                std::make_shared<ZRMCreateStatisticOperation>(body, context, time, priority);
            // When it finishes, the data source counts the record already.
            operation->addChangeObserver([unstored](const std::string& key, bool isPrior) {
                if (key == "isFinished" && !isPrior) {
                    --*unstored;
                }
            });
            queue->add(operation);
        }
    };
    return std::make_shared<ZRMStatisticsPipeline>(
        platform_->executor->makeSerialQueue(zrm_queueNameForClass("ZRMStatisticsPipeline"),
                                             ZRMQualityOfService::Default),
        std::move(encode), std::move(store),
        [queue = queue_](ZRMTask goOn) { return queue->awaitRoom(std::move(goOn)); });
}

void ZRMStatisticsServiceImpl::sendWithoutStorage(const ZRMStatisticsEvent& event) {
    const auto body = bodyMaker_.bodyWithParameters(event.parameters());
    if (!body) {
        return;
    }
    zrm_logVerbose(this, [&] { return contentText("Send", body.get(), body->size()); });
    ++*unstored_;
    // The sender holds the bytes until their upload has ended.
    sender_->sendStatisticsData(std::shared_ptr<ZRMStatisticsData>(
        new ZRMStatisticsDataInMemory(body), [unstored = unstored_](ZRMStatisticsData* data) {
            delete data;
            --*unstored;
        }));
}

std::size_t ZRMStatisticsServiceImpl::pendingEventCount() const {
    // Read in this order, an event that becomes a record meanwhile counts twice rather than never.
    const auto unstored = unstored_->load();
    const auto source = dataSource();
    const auto count = unstored + (source ? source->count() : 0);
    return isStarted() && count > 0 ? static_cast<std::size_t>(count) : 0;
}

std::size_t ZRMStatisticsServiceImpl::unstoredEventCount() const {
    const auto unstored = unstored_->load();
    return storage_ && unstored > 0 ? static_cast<std::size_t>(unstored) : 0;
}

bool ZRMStatisticsServiceImpl::isStarted() const {
    const ZRMLockGuard lock(mutex_);
    return isStarted_;
}

void ZRMStatisticsServiceImpl::deleteAllStatisticsFromStorageIfNeeded() {
    const auto source = dataSource();
    if (!source || !zrm_isStatisticsStorageFull(source->getStorageSize(), maxStorageSize_)) {
        return;
    }
    // The size shrinks when the deletions run; events sent until then ask for no second round.
    if (isDeletingAll_.exchange(true)) {
        return;
    }
    zrm_logError(this, "Storage is full, deleting all statistics");
    for (const auto& statistic : source->fetchedStatisticsToSend()) {
        queue_->add(
            std::make_shared<ZRMDeleteStatisticOperation>(statistic.jws, storage_->context()));
    }
    queue_->addBlock([weak = weak_from_this()] {
        if (const auto self = weak.lock()) {
            self->isDeletingAll_ = false;
        }
    });
}

void ZRMStatisticsServiceImpl::sendAllStatisticsFromStorage(
    const ZRMStatisticsDataSource& dataSource, double now) {
    const auto plan = zrm_planResend(dataSource.fetchedStatisticsToSend(), now);
    for (const auto& data : plan.toSend) {
        sender_->sendStatisticsData(data);
    }
    if (!plan.toDelete.empty()) {
        zrm_logError(this, "Statistics deleted because they expired: " +
                               std::to_string(plan.toDelete.size()));
        deleteOldStatistics(plan.toDelete);
    }
}

void ZRMStatisticsServiceImpl::deleteOldStatistics(const std::vector<Data>& statistics) {
    for (const auto& data : statistics) {
        queue_->add(std::make_shared<ZRMDeleteStatisticOperation>(data, storage_->context()));
    }
}

void ZRMStatisticsServiceImpl::dataSourceDidInsertStatisticsData(
    ZRMStatisticsDataSource& dataSource, const Data& data) {
    zrm_logVerbose(this, [&] { return contentText("Did save", data->identity(), data->length()); });
    {
        const ZRMLockGuard lock(insertionsMutex_);
        insertions_.push_back({&dataSource, data});
        if (insertions_.size() > 1) {
            return;
        }
    }
    // One block for all that is inserted until it runs.
    queue_->addBlock([weak = weak_from_this()] {
        if (const auto self = weak.lock()) {
            self->sendInsertedStatistics();
        }
    });
}

void ZRMStatisticsServiceImpl::sendInsertedStatistics() {
    std::vector<Insertion> insertions;
    {
        const ZRMLockGuard lock(insertionsMutex_);
        insertions.swap(insertions_);
    }
    const auto current = dataSource();
    for (const auto& [reporter, data] : insertions) {
        // A start since the insertion found the record in the store and has sent it.
        if (!current || current.get() == reporter) {
            sender_->sendStatisticsData(data);
        }
    }
}

void ZRMStatisticsServiceImpl::dataSourceDidDeleteStatisticsData(
    ZRMStatisticsDataSource& /*dataSource*/, const Data& data) {
    zrm_logVerbose(this,
                   [&] { return contentText("Did delete", data->identity(), data->length()); });
}

void ZRMStatisticsServiceImpl::statisticsSenderDidSendData(ZRMStatisticsSender& /*sender*/,
                                                           const Data& data) {
    zrm_logVerbose(this, [&] { return contentText("Did send", data->identity(), data->length()); });
    if (storage_) {
        queue_->add(std::make_shared<ZRMDeleteStatisticOperation>(data, storage_->context()));
    }
}

void ZRMStatisticsServiceImpl::statisticsSenderDidFailToSendData(ZRMStatisticsSender& /*sender*/,
                                                                 const Data& data,
                                                                 const ZRMError& error) {
    zrm_logError(this, "Did fail to send event with content: " + zrm_addressText(data->identity()) +
                           " error: " + error.localizedDescription());
    if (storage_) {
        queue_->add(std::make_shared<ZRMUpdateStatisticOperation>(data, storage_->context(),
                                                                  serverTimeProvider_));
    }
}
