#include "ZRMPlatform/Simulated/ZRMSimulatedSqliteLocks.h"

#include <cstddef>

#include <sqlite3.h>

namespace {

constexpr int kPending = 3;  // between SQLITE_LOCK_RESERVED and SQLITE_LOCK_EXCLUSIVE

}  // namespace

int ZRMSimulatedSqliteLocks::lock(ZRMSimulatedSqliteHolder& holder, int level) {
    if (holder.level >= level) {
        return SQLITE_OK;
    }
    const bool otherWrites = writer_ && writer_ != &holder;
    if (level == SQLITE_LOCK_SHARED) {
        if (otherWrites && writer_->level >= kPending) {
            return SQLITE_BUSY;
        }
        ++readers_;
        holder.level = SQLITE_LOCK_SHARED;
        return SQLITE_OK;
    }
    if (otherWrites) {
        return SQLITE_BUSY;
    }
    writer_ = &holder;
    if (level == SQLITE_LOCK_EXCLUSIVE && readers_ > 1) {
        holder.level = kPending;
        return SQLITE_BUSY;
    }
    holder.level = level;
    return SQLITE_OK;
}

void ZRMSimulatedSqliteLocks::unlock(ZRMSimulatedSqliteHolder& holder, int level) {
    if (holder.level <= level) {
        return;
    }
    if (writer_ == &holder) {
        writer_ = nullptr;
    }
    if (level == SQLITE_LOCK_NONE) {
        --readers_;
    }
    holder.level = level;
}

int ZRMSimulatedSqliteLocks::lockSlots(ZRMSimulatedSqliteHolder& holder, int first, int count,
                                       bool exclusive) {
    for (int number = first; number < first + count; ++number) {
        const auto& slot = slots_.at(static_cast<std::size_t>(number));
        const std::uint32_t bit = 1U << number;
        const int others = slot.readers - ((holder.sharedSlots & bit) != 0 ? 1 : 0);
        const bool otherExclusive = slot.exclusive && (holder.exclusiveSlots & bit) == 0;
        if (otherExclusive || (exclusive && others > 0)) {
            return SQLITE_BUSY;
        }
    }
    for (int number = first; number < first + count; ++number) {
        auto& slot = slots_.at(static_cast<std::size_t>(number));
        const std::uint32_t bit = 1U << number;
        if (exclusive) {
            slot.exclusive = true;
            holder.exclusiveSlots |= bit;
        } else if ((holder.sharedSlots & bit) == 0) {
            ++slot.readers;
            holder.sharedSlots |= bit;
        }
    }
    return SQLITE_OK;
}

void ZRMSimulatedSqliteLocks::unlockSlots(ZRMSimulatedSqliteHolder& holder, int first, int count) {
    for (int number = first; number < first + count; ++number) {
        auto& slot = slots_.at(static_cast<std::size_t>(number));
        const std::uint32_t bit = 1U << number;
        if ((holder.exclusiveSlots & bit) != 0) {
            slot.exclusive = false;
        }
        if ((holder.sharedSlots & bit) != 0) {
            --slot.readers;
        }
        holder.exclusiveSlots &= ~bit;
        holder.sharedSlots &= ~bit;
    }
}

volatile void* ZRMSimulatedSqliteLocks::region(ZRMSimulatedSqliteHolder& holder, std::size_t number,
                                               std::size_t size, bool make) {
    if (!holder.mapped) {
        holder.mapped = true;
        ++mappings_;
    }
    if (number >= regions_.size() && !make) {
        return nullptr;
    }
    while (number >= regions_.size()) {
        regions_.push_back(std::make_unique<char[]>(size));
    }
    return regions_[number].get();
}

void ZRMSimulatedSqliteLocks::unmap(ZRMSimulatedSqliteHolder& holder) {
    unlockSlots(holder, 0, static_cast<int>(kSlots));
    if (!holder.mapped) {
        return;
    }
    holder.mapped = false;
    if (--mappings_ == 0) {
        regions_.clear();
    }
}

std::shared_ptr<ZRMSimulatedSqliteLocks> ZRMSimulatedSqliteLockTable::locksOf(
    const std::string& path) {
    std::erase_if(locks_, [](const auto& entry) { return entry.second.expired(); });
    auto& entry = locks_[path];
    auto locks = entry.lock();
    if (!locks) {
        locks = std::make_shared<ZRMSimulatedSqliteLocks>();
        entry = locks;
    }
    return locks;
}
