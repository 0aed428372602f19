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
      queue_(platform_->executor, zrm_queueNameForClass("ZRMStatisticsServiceImpl"), 1) {}

ZRMStatisticsServiceImpl::~ZRMStatisticsServiceImpl() {
    stop();
}

std::shared_ptr<ZRMStatisticsDataSource> ZRMStatisticsServiceImpl::dataSource() const {
    const std::lock_guard lock(mutex_);
    return dataSource_;
}

void ZRMStatisticsServiceImpl::start() {
    bool wasStarted = false;
    {
        const std::lock_guard lock(mutex_);
        wasStarted = std::exchange(isStarted_, true);
    }
    if (wasStarted) {
        zrm_logVerbose(this, "Service already started");
        return;
    }
    sender_->addObserver(shared_from_this());
    if (!storage_) {
        return;
    }
    // In one block, so that a record stored meanwhile is either resent here or reported, not both.
    storage_->context()->performBlockAndWait([this] {
        const auto dataSource = ZRMStatisticsDataSource::create(storage_->context());
        dataSource->addObserver(shared_from_this());
        {
            const std::lock_guard lock(mutex_);
            dataSource_ = dataSource;
        }
        sendAllStatisticsFromStorage(*dataSource);
    });
}

void ZRMStatisticsServiceImpl::stop() {
    bool wasStarted = false;
    std::shared_ptr<ZRMStatisticsDataSource> dataSource;
    {
        const std::lock_guard lock(mutex_);
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

void ZRMStatisticsServiceImpl::send(const ZRMStatisticsEvent& event, std::int16_t priority) {
    if (!isStarted()) {
        platform_->consoleLog->write("ZRMStatisticsService not started\n");
        return;
    }
    const auto body = bodyMaker_.bodyWithParameters(event.parameters());
    if (!body) {
        return;
    }
    zrm_logVerbose(this, [&] { return contentText("Send", body.get(), body->size()); });
    ++*unstored_;
    if (storage_) {
        store(body, priority);
    } else {
        // The sender holds the bytes until their upload has ended.
        sender_->sendStatisticsData(std::shared_ptr<ZRMStatisticsData>(
            new ZRMStatisticsDataInMemory(body), [unstored = unstored_](ZRMStatisticsData* data) {
                delete data;
                --*unstored;
            }));
    }
}

void ZRMStatisticsServiceImpl::store(const ZRMSharedData& body, std::int16_t priority) {
    deleteAllStatisticsFromStorageIfNeeded();
    const auto operation = std::make_shared<ZRMCreateStatisticOperation>(
        body, storage_->context(), serverTimeProvider_, priority);
    // When it finishes, the data source counts the record already.
    operation->addChangeObserver([unstored = unstored_](const std::string& key, bool isPrior) {
        if (key == "isFinished" && !isPrior) {
            --*unstored;
        }
    });
    addStoreOperation(operation);
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
    const std::lock_guard lock(mutex_);
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
        addStoreOperation(
            std::make_shared<ZRMDeleteStatisticOperation>(statistic.jws, storage_->context()));
    }
    addBlock([weak = weak_from_this()] {
        if (const auto self = weak.lock()) {
            self->isDeletingAll_ = false;
        }
    });
}

void ZRMStatisticsServiceImpl::sendAllStatisticsFromStorage(
    const ZRMStatisticsDataSource& dataSource) {
    const auto now = zrm_statisticsTimestamp(*serverTimeProvider_, platform_->clock->now());
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
        addStoreOperation(std::make_shared<ZRMDeleteStatisticOperation>(data, storage_->context()));
    }
}

void ZRMStatisticsServiceImpl::dataSourceDidInsertStatisticsData(
    ZRMStatisticsDataSource& dataSource, const Data& data) {
    zrm_logVerbose(this, [&] { return contentText("Did save", data->identity(), data->length()); });
    {
        const std::lock_guard lock(insertionsMutex_);
        insertions_.push_back({&dataSource, data});
        if (insertions_.size() > 1) {
            return;
        }
    }
    // One block for all that is inserted until it runs.
    addBlock([weak = weak_from_this()] {
        if (const auto self = weak.lock()) {
            self->sendInsertedStatistics();
        }
    });
}

void ZRMStatisticsServiceImpl::sendInsertedStatistics() {
    std::vector<Insertion> insertions;
    {
        const std::lock_guard lock(insertionsMutex_);
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
        addStoreOperation(std::make_shared<ZRMDeleteStatisticOperation>(data, storage_->context()));
    }
}

void ZRMStatisticsServiceImpl::statisticsSenderDidFailToSendData(ZRMStatisticsSender& /*sender*/,
                                                                 const Data& data,
                                                                 const ZRMError& error) {
    zrm_logError(this, "Did fail to send event with content: " + zrm_addressText(data->identity()) +
                           " error: " + error.localizedDescription());
    if (storage_) {
        addStoreOperation(std::make_shared<ZRMUpdateStatisticOperation>(data, storage_->context(),
                                                                        serverTimeProvider_));
    }
}

void ZRMStatisticsServiceImpl::addStoreOperation(
    const std::shared_ptr<ZRMStatisticBaseOperation>& operation) {
    const std::lock_guard lock(groupMutex_);
    if (!group_ || !group_->join(operation)) {
        group_ = std::make_shared<ZRMStatisticsSaveGroup>();
        static_cast<void>(group_->join(operation));
    }
    queue_.addOperation(operation);
}

// A block between two store operations keeps them from sharing a save, and the queue's order.
void ZRMStatisticsServiceImpl::addBlock(std::function<void()> block) {
    const std::lock_guard lock(groupMutex_);
    group_.reset();
    queue_.addOperationWithBlock(std::move(block));
}
