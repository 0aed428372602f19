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
    // In one block, so that every record is either counted by the fetch or reported as a change.
    dataSource->context_->performBlockAndWait([&] {
        dataSource->performFetch();
        dataSource->context_->addObserver(dataSource);
    });
    return dataSource;
}

ZRMStatisticsDataSource::ZRMStatisticsDataSource(std::shared_ptr<ZRMStatisticsContext> context)
    : context_(std::move(context)), observers_(context_->platform()->consoleLog) {}

ZRMStatisticsDataSource::~ZRMStatisticsDataSource() {
    context_->removeObserver(this);
}

void ZRMStatisticsDataSource::performFetch() {
    const auto totals = context_->totals();
    if (!totals) {
        logFetchFailure(this, totals.error());
        return;
    }
    size_ = totals.value().length;
    count_ = totals.value().count;
    isFetched_ = true;
}

std::vector<ZRMStatisticEntity> ZRMStatisticsDataSource::fetchedStatisticsToSend() const {
    std::vector<ZRMStatisticEntity> statistics;
    if (!isFetched_) {
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

void ZRMStatisticsDataSource::addObserver(
    const std::shared_ptr<ZRMStatisticsDataSourceObserver>& observer) {
    observers_.addObserver(observer);
}

void ZRMStatisticsDataSource::removeObserver(const ZRMStatisticsDataSourceObserver* observer) {
    observers_.removeObserver(observer);
}

void ZRMStatisticsDataSource::contextDidSaveChange(const ZRMStatisticsChange& change) {
    const auto length = static_cast<std::int64_t>(change.data->length());
    switch (change.kind) {
        case ZRMStatisticsChangeKind::Insert:
            size_ += length;
            ++count_;
            observers_.notifyWithBlock([&](ZRMStatisticsDataSourceObserver& observer) {
                observer.dataSourceDidInsertStatisticsData(*this, change.data);
            });
            break;
        case ZRMStatisticsChangeKind::Delete:
            size_ -= length;
            --count_;
            observers_.notifyWithBlock([&](ZRMStatisticsDataSourceObserver& observer) {
                observer.dataSourceDidDeleteStatisticsData(*this, change.data);
            });
            break;
        case ZRMStatisticsChangeKind::Update:
            break;
    }
}
