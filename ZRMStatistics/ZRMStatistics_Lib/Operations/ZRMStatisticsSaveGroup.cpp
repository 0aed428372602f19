#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMStatisticsSaveGroup.h"

#include <algorithm>
#include <utility>

bool ZRMStatisticsSaveGroup::join(const std::shared_ptr<ZRMStatisticBaseOperation>& operation) {
    const std::lock_guard lock(mutex_);
    if (isClosed_ || operations_.size() >= kMaxOperations) {
        return false;
    }
    operations_.push_back(operation);
    operation->group_ = shared_from_this();
    return true;
}

void ZRMStatisticsSaveGroup::run() {
    Operations operations;
    {
        const std::lock_guard lock(mutex_);
        isClosed_ = true;
        for (const auto& waiting : std::exchange(operations_, {})) {
            auto operation = waiting.lock();
            if (operation && !operation->isCancelled()) {
                operations.push_back(std::move(operation));
            }
        }
    }
    // One that is alone saves for itself and says so if it fails.
    if (operations.size() > 1) {
        auto& context = *operations.front()->context();
        context.performBlockAndWait([&] { change(operations, context); });
    }
}

void ZRMStatisticsSaveGroup::change(const Operations& operations, ZRMStatisticsContext& context) {
    std::vector<ZRMStatisticBaseOperation::Outcome> outcomes;
    for (const auto& operation : operations) {
        outcomes.push_back(operation->changeRecords());
        if (outcomes.back().error) {
            context.rollback();
            return;
        }
    }
    if (context.save()) {
        return;
    }
    for (std::size_t index = 0; index < operations.size(); ++index) {
        operations[index]->outcome_ = std::move(outcomes[index]);
    }
}
