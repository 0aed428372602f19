#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMStoredStatisticsData.h"

std::shared_ptr<ZRMStoredStatisticsData> ZRMStoredStatisticsDataRegistry::find(
    std::int64_t record) const {
    const ZRMLockGuard lock(mutex_);
    const auto found = known_.find(record);
    return found == known_.end() ? nullptr : found->second.lock();
}

std::shared_ptr<ZRMStoredStatisticsData> ZRMStoredStatisticsDataRegistry::knownFor(
    const ZRMStatisticsData& data) const {
    const auto* const stored = dynamic_cast<const ZRMStoredStatisticsData*>(&data);
    auto known = stored != nullptr ? find(stored->record()) : nullptr;
    return known.get() == stored ? known : nullptr;
}

void ZRMStoredStatisticsDataRegistry::add(const std::shared_ptr<ZRMStoredStatisticsData>& data) {
    const ZRMLockGuard lock(mutex_);
    known_.insert_or_assign(data->record(), data);
}

void ZRMStoredStatisticsDataRegistry::remove(const ZRMStoredStatisticsData& data) {
    // Released after the lock: the last reference may be this one, and its end comes back here.
    std::shared_ptr<ZRMStoredStatisticsData> known;
    const ZRMLockGuard lock(mutex_);
    const auto found = known_.find(data.record());
    if (found == known_.end()) {
        return;
    }
    known = found->second.lock();
    if (!known || known.get() == &data) {
        known_.erase(found);
    }
}

void ZRMStoredStatisticsDataRegistry::reserve(std::size_t count) {
    const ZRMLockGuard lock(mutex_);
    known_.reserve(count);
}

ZRMStoredStatisticsData::ZRMStoredStatisticsData(std::shared_ptr<Source> source,
                                                 std::int64_t record, std::size_t length,
                                                 ZRMSharedData bytes, const void* identity)
    : ZRMStatisticsData(length, identity),
      source_(std::move(source)),
      record_(record),
      bytes_(std::move(bytes)) {}

ZRMStoredStatisticsData::~ZRMStoredStatisticsData() {
    source_->registry.remove(*this);
}

ZRMSharedData ZRMStoredStatisticsData::heldBytes() const {
    const ZRMLockGuard lock(mutex_);
    return bytes_;
}

ZRMSharedData ZRMStoredStatisticsData::bytes() const {
    if (auto held = heldBytes()) {
        return held;
    }
    auto read = source_->read(record_);
    // The record may have gone in between; then its bytes were kept.
    return read ? read : heldBytes();
}

void ZRMStoredStatisticsData::turnIntoFault() {
    const ZRMLockGuard lock(mutex_);
    if (!isKept_) {
        bytes_.reset();
    }
}

void ZRMStoredStatisticsData::keep(ZRMSharedData bytes) {
    const ZRMLockGuard lock(mutex_);
    isKept_ = true;
    bytes_ = std::move(bytes);
}
