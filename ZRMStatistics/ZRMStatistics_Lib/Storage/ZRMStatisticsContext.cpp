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
    const std::lock_guard lock(mutex_);
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
template <class Work>
auto ZRMStatisticsContext::guarded(Work work) -> ZRMResult<decltype(work())> {
    try {
        return work();
    } catch (const SQLite::Exception& exception) {
        auto error = zrm_errorFromSqlite(exception);
        if (zrm_isStoreDamage(error)) {
            zrm_markStoreDamaged(*platform_->fileManager, coordinator_->storePath());
        }
        return error;
    }
}

void ZRMStatisticsContext::beginChanges() {
    if (!isChanging_) {
        coordinator_->database().exec("BEGIN IMMEDIATE");
        isChanging_ = true;
    }
}

ZRMResult<ZRMStatisticEntity> ZRMStatisticsContext::insertObject(
    const ZRMStatisticEntity& statistic) {
    return guarded([&] {
        const auto bytes = statistic.jws->bytes();
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
    });
}

std::optional<ZRMError> ZRMStatisticsContext::updateObject(const ZRMStatisticEntity& statistic) {
    const auto updated = guarded([&] {
        beginChanges();
        table_.update(rowOf(statistic));
        changes_.push_back({ZRMStatisticsChangeKind::Update, statistic.jws});
        return true;
    });
    return updated ? std::nullopt : std::optional(updated.error());
}

std::optional<ZRMError> ZRMStatisticsContext::deleteObject(const ZRMStatisticEntity& statistic) {
    const auto deleted = guarded([&] {
        beginChanges();
        if (const auto data = dataSource_->registry.find(statistic.objectIdentifier)) {
            data->keep(data->bytes());
        }
        table_.remove(statistic.objectIdentifier);
        changes_.push_back({ZRMStatisticsChangeKind::Delete, statistic.jws});
        return true;
    });
    return deleted ? std::nullopt : std::optional(deleted.error());
}

ZRMResult<std::vector<ZRMStatisticEntity>> ZRMStatisticsContext::executeFetchRequest(
    const ZRMStatisticFetchRequest& request) {
    return guarded([&] {
        const auto rows = request.jws ? table_.withBytes(*request.jws, request.fetchLimit)
                                      : table_.all(request.fetchLimit);
        dataSource_->registry.reserve(rows.size());
        std::vector<ZRMStatisticEntity> statistics;
        statistics.reserve(rows.size());
        for (const auto& row : rows) {
            statistics.push_back(entityOf(row));
        }
        return statistics;
    });
}

ZRMResult<ZRMStatisticsTable::Totals> ZRMStatisticsContext::totals() {
    return guarded([this] { return table_.totals(); });
}

std::optional<ZRMError> ZRMStatisticsContext::save() {
    if (!isChanging_) {
        return std::nullopt;
    }
    const auto committed = guarded([this] {
        coordinator_->database().exec("COMMIT");
        return true;
    });
    if (!committed) {
        rollback();
        return committed.error();
    }
    isChanging_ = false;
    const auto saved = std::exchange(changes_, {});
    for (const auto& change : saved) {
        observers_.notifyWithBlock([&change](ZRMStatisticsContextObserver& observer) {
            observer.contextDidSaveChange(change);
        });
    }
    return std::nullopt;
}

void ZRMStatisticsContext::rollback() {
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
    const std::lock_guard lock(mutex_);
    auto bytes = guarded([&] { return table_.bytes(record); });
    if (!bytes || !bytes.value()) {
        return nullptr;
    }
    return std::make_shared<const ZRMData>(*std::move(bytes).value());
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
