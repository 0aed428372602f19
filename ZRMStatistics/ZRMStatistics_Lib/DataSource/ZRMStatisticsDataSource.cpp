#include "ZRMStatistics/ZRMStatistics_Lib/DataSource/ZRMStatisticsDataSource.h"

#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLog.h"

namespace {

void logFetchFailure(const ZRMStatisticsDataSource* dataSource, const ZRMError& error) {
    zrm_logError(dataSource,
                 "Can't fetch statistics entites from storage: " + error.localizedDescription());
}

}  // namespace

std::shared_ptr<ZRMStatisticsDataSource> ZRMStatisticsDataSource::create(
    std::shared_ptr<ZRMStatisticsContext> context) {
    std::shared_ptr<ZRMStatisticsDataSource> dataSource(
        new ZRMStatisticsDataSource(std::move(context)));
    dataSource->context_->addObserver(dataSource);
    return dataSource;
}

ZRMStatisticsDataSource::ZRMStatisticsDataSource(std::shared_ptr<ZRMStatisticsContext> context)
    : context_(std::move(context)), observers_(context_->platform()->consoleLog) {}

ZRMStatisticsDataSource::~ZRMStatisticsDataSource() {
    context_->removeObserver(this);
}

void ZRMStatisticsDataSource::performFetch() const {
    if (state_ != State::NotFetched) {
        return;
    }
    // In one block, so that every record is either counted here or reported as a change.
    context_->performBlockAndWait([this] {
        if (state_ != State::NotFetched) {
            return;
        }
        fetchedChanges_ = context_->savedChanges();
        const auto totals = context_->totals();
        if (!totals) {
            logFetchFailure(this, totals.error());
            state_ = State::Failed;
            return;
        }
        size_ = totals.value().length;
        count_ = totals.value().count;
        state_ = State::Fetched;
    });
}

std::vector<ZRMStatisticEntity> ZRMStatisticsDataSource::fetchedStatisticsToSend() const {
    std::vector<ZRMStatisticEntity> statistics;
    performFetch();
    if (state_ == State::Failed) {
        return statistics;
    }
    context_->performBlockAndWait([&] {
        auto fetched = context_->executeFetchRequest(ZRMStatisticEntity::fetchRequest());
        if (fetched) {
            statistics = std::move(fetched).value();
        } else {
            logFetchFailure(this, fetched.error());
        }
    });
    return statistics;
}

std::int64_t ZRMStatisticsDataSource::getStorageSize() const {
    performFetch();
    return size_;
}

std::int64_t ZRMStatisticsDataSource::count() const {
    performFetch();
    return count_;
}

void ZRMStatisticsDataSource::addObserver(
    const std::shared_ptr<ZRMStatisticsDataSourceObserver>& observer) {
    observers_.addObserver(observer);
}

void ZRMStatisticsDataSource::removeObserver(const ZRMStatisticsDataSourceObserver* observer) {
    observers_.removeObserver(observer);
}

// A fetch between a save and the report of its changes has counted them.
void ZRMStatisticsDataSource::follow(const ZRMStatisticsChange& change, std::int64_t sign) {
    if (state_ != State::NotFetched && change.number > fetchedChanges_) {
        size_ += sign * static_cast<std::int64_t>(change.data->length());
        count_ += sign;
    }
}

void ZRMStatisticsDataSource::contextDidSaveChange(const ZRMStatisticsChange& change) {
    switch (change.kind) {
        case ZRMStatisticsChangeKind::Insert:
            follow(change, 1);
            observers_.notifyWithBlock([&](ZRMStatisticsDataSourceObserver& observer) {
                observer.dataSourceDidInsertStatisticsData(*this, change.data);
            });
            break;
        case ZRMStatisticsChangeKind::Delete:
            follow(change, -1);
            observers_.notifyWithBlock([&](ZRMStatisticsDataSourceObserver& observer) {
                observer.dataSourceDidDeleteStatisticsData(*this, change.data);
            });
            break;
        case ZRMStatisticsChangeKind::Update:
            break;
    }
}
