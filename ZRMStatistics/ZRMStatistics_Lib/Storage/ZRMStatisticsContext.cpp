#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStatisticsContext.h"

#include <utility>

#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMSqliteError.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStoreRecovery.h"

namespace {

constexpr std::size_t kRecentlyInserted = 64;

ZRMStatisticsTable::Row rowOf(const ZRMStatisticEntity& statistic) {
    return {statistic.objectIdentifier, statistic.storeTimestamp, statistic.lastTryTimestamp,
            statistic.activeDays,       statistic.priority,       statistic.jws->length()};
}

}  // namespace

ZRMResult<std::shared_ptr<ZRMStatisticsContext>> ZRMStatisticsContext::create(
    std::shared_ptr<const ZRMPlatform> platform,
    std::shared_ptr<ZRMPersistentStoreCoordinator> coordinator) {
    try {
        std::shared_ptr<ZRMStatisticsContext> context(
            new ZRMStatisticsContext(std::move(platform), std::move(coordinator)));
        context->dataSource_->read = [weak = context->weak_from_this()](std::int64_t record) {
            const auto self = weak.lock();
            return self ? self->readBytes(record) : nullptr;
        };
        return context;
    } catch (const SQLite::Exception& exception) {
        return zrm_errorFromSqlite(exception);
    }
}

ZRMStatisticsContext::ZRMStatisticsContext(
    std::shared_ptr<const ZRMPlatform> platform,
    std::shared_ptr<ZRMPersistentStoreCoordinator> coordinator)
    : platform_(std::move(platform)),
      coordinator_(std::move(coordinator)),
      observers_(platform_->consoleLog),
      dataSource_(std::make_shared<ZRMStoredStatisticsData::Source>()),
      table_(coordinator_->database()) {}

void ZRMStatisticsContext::performBlockAndWait(const std::function<void()>& block) {
    const ZRMLockGuard lock(mutex_);
    block();
}

void ZRMStatisticsContext::addObserver(
    const std::shared_ptr<ZRMStatisticsContextObserver>& observer) {
    observers_.addObserver(observer);
}

void ZRMStatisticsContext::removeObserver(const ZRMStatisticsContextObserver* observer) {
    observers_.removeObserver(observer);
}

// Damage is noted for the next opening, which can do something about it.
ZRMError ZRMStatisticsContext::failure(const SQLite::Exception& exception) const {
    auto error = zrm_errorFromSqlite(exception);
    if (zrm_isStoreDamage(error)) {
        zrm_markStoreDamaged(*platform_->fileManager, coordinator_->storePath());
    }
    return error;
}

void ZRMStatisticsContext::beginChanges() {
    if (!isChanging_) {
        table_.beginTransaction();
        isChanging_ = true;
    }
}

ZRMResult<ZRMStatisticEntity> ZRMStatisticsContext::insertObject(
    const ZRMStatisticEntity& statistic) {
    const auto bytes = statistic.jws->bytes();
    const ZRMLockGuard lock(mutex_);
    try {
        beginChanges();
        const auto record = table_.insert(rowOf(statistic), *bytes);
        const auto data = std::make_shared<ZRMStoredStatisticsData>(
            dataSource_, record, bytes->size(), bytes, statistic.jws->identity());
        dataSource_->registry.add(data);
        keepInMemoryForAWhile(data);
        changes_.push_back({ZRMStatisticsChangeKind::Insert, data});
        auto stored = statistic;
        stored.objectIdentifier = record;
        stored.jws = data;
        return stored;
    } catch (const SQLite::Exception& exception) {
        return failure(exception);
    }
}

std::optional<ZRMError> ZRMStatisticsContext::updateObject(const ZRMStatisticEntity& statistic) {
    const ZRMLockGuard lock(mutex_);
    try {
        beginChanges();
        table_.update(rowOf(statistic));
        changes_.push_back({ZRMStatisticsChangeKind::Update, statistic.jws});
        return std::nullopt;
    } catch (const SQLite::Exception& exception) {
        return failure(exception);
    }
}

std::optional<ZRMError> ZRMStatisticsContext::deleteObject(const ZRMStatisticEntity& statistic) {
    const ZRMLockGuard lock(mutex_);
    try {
        beginChanges();
        const auto data = dataSource_->registry.find(statistic.objectIdentifier);
        if (data && !data->isAnswered()) {
            data->keep(data->bytes());
        }
        table_.remove(statistic.objectIdentifier);
        changes_.push_back({ZRMStatisticsChangeKind::Delete, statistic.jws});
        return std::nullopt;
    } catch (const SQLite::Exception& exception) {
        return failure(exception);
    }
}

ZRMResult<std::vector<ZRMStatisticEntity>> ZRMStatisticsContext::executeFetchRequest(
    const ZRMStatisticFetchRequest& request) {
    const ZRMLockGuard lock(mutex_);
    try {
        const auto rows = request.jws ? table_.withBytes(*request.jws, request.fetchLimit)
                                      : table_.all(request.fetchLimit);
        dataSource_->registry.reserve(rows.size());
        std::vector<ZRMStatisticEntity> statistics;
        statistics.reserve(rows.size());
        for (const auto& row : rows) {
            statistics.push_back(entityOf(row));
        }
        return statistics;
    } catch (const SQLite::Exception& exception) {
        return failure(exception);
    }
}

ZRMResult<std::optional<ZRMStatisticEntity>> ZRMStatisticsContext::statisticOf(
    const ZRMStatisticsData& data) {
    using Found = std::optional<ZRMStatisticEntity>;
    // A record's number may be given away again; then other data is known for it.
    const auto known = dataSource_->registry.knownFor(data);
    if (!known) {
        return Found();
    }
    const ZRMLockGuard lock(mutex_);
    try {
        const auto row = table_.withId(known->record());
        return row ? Found(entityOf(*row)) : Found();
    } catch (const SQLite::Exception& exception) {
        return failure(exception);
    }
}

ZRMResult<ZRMStatisticsTable::Totals> ZRMStatisticsContext::totals() {
    const ZRMLockGuard lock(mutex_);
    try {
        return table_.totals();
    } catch (const SQLite::Exception& exception) {
        return failure(exception);
    }
}

std::uint64_t ZRMStatisticsContext::savedChanges() {
    const ZRMLockGuard lock(mutex_);
    return savedChanges_;
}

std::optional<ZRMError> ZRMStatisticsContext::save() {
    const ZRMLockGuard lock(mutex_);
    if (!isChanging_) {
        return std::nullopt;
    }
    try {
        table_.commitTransaction();
    } catch (const SQLite::Exception& exception) {
        auto error = failure(exception);
        rollback();
        return error;
    }
    isChanging_ = false;
    auto saved = std::exchange(changes_, {});
    for (auto& change : saved) {
        change.number = ++savedChanges_;
    }
    for (const auto& change : saved) {
        observers_.notifyWithBlock([&change](ZRMStatisticsContextObserver& observer) {
            observer.contextDidSaveChange(change);
        });
    }
    return std::nullopt;
}

void ZRMStatisticsContext::rollback() {
    const ZRMLockGuard lock(mutex_);
    changes_.clear();
    if (std::exchange(isChanging_, false)) {
        // Some failures end the transaction by themselves; then there is nothing left to undo.
        static_cast<void>(coordinator_->database().tryExec("ROLLBACK"));
    }
}

// A burst of events must not fill the memory with bytes that the store holds anyway.
void ZRMStatisticsContext::keepInMemoryForAWhile(
    const std::shared_ptr<ZRMStatisticsData>& inserted) {
    recentlyInserted_.push_back(inserted);
    if (recentlyInserted_.size() > kRecentlyInserted) {
        if (const auto oldest = recentlyInserted_.front().lock()) {
            oldest->turnIntoFault();
        }
        recentlyInserted_.pop_front();
    }
}

ZRMSharedData ZRMStatisticsContext::readBytes(std::int64_t record) {
    const ZRMLockGuard lock(mutex_);
    try {
        auto bytes = table_.bytes(record);
        return bytes ? std::make_shared<const ZRMData>(*std::move(bytes)) : nullptr;
    } catch (const SQLite::Exception& exception) {
        static_cast<void>(failure(exception));
        return nullptr;
    }
}

std::shared_ptr<ZRMStatisticsData> ZRMStatisticsContext::dataOf(
    const ZRMStatisticsTable::Row& row) {
    if (auto known = dataSource_->registry.find(row.id)) {
        return known;
    }
    auto data = std::make_shared<ZRMStoredStatisticsData>(dataSource_, row.id, row.length, nullptr,
                                                          nullptr);
    dataSource_->registry.add(data);
    return data;
}

ZRMStatisticEntity ZRMStatisticsContext::entityOf(const ZRMStatisticsTable::Row& row) {
    return {row.id,         dataOf(row), row.storeTimestamp, row.lastTryTimestamp,
            row.activeDays, row.priority};
}
