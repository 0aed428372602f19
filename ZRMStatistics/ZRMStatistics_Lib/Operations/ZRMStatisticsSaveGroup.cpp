#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMStatisticsSaveGroup.h"

#include <utility>

bool ZRMStatisticsSaveGroup::join(const std::shared_ptr<ZRMStatisticBaseOperation>& operation) {
    const ZRMLockGuard lock(mutex_);
    if (isClosed_ || operations_.size() >= kMaxOperations) {
        return false;
    }
    operations_.push_back(operation);
    return true;
}

std::size_t ZRMStatisticsSaveGroup::run() {
    Operations operations;
    {
        const ZRMLockGuard lock(mutex_);
        isClosed_ = true;
        operations.swap(operations_);
    }
    // One that is alone saves for itself and says so if it fails.
    if (operations.size() > 1) {
        operations.front()->context()->performBlockAndWait([&] { change(operations); });
    }
    for (auto& operation : operations) {
        operation->start();
        operation.reset();
    }
    return operations.size();
}

void ZRMStatisticsSaveGroup::change(const Operations& operations) {
    auto& context = *operations.front()->context();
    struct Changed {
        ZRMStatisticBaseOperation& operation;
        ZRMStatisticBaseOperation::Outcome outcome;
    };
    std::vector<Changed> changed;
    changed.reserve(operations.size());
    for (const auto& operation : operations) {
        if (operation->isCancelled()) {
            continue;
        }
        changed.push_back({*operation, operation->changeRecords()});
        if (changed.back().outcome.error) {
            context.rollback();
            return;
        }
    }
    if (context.save()) {
        return;
    }
    for (auto& [operation, outcome] : changed) {
        operation.outcome_ = std::move(outcome);
    }
}
