// Operations that wait one behind the other on a serial queue and share one save.
#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMStatisticBaseOperation.h"

// A save costs a write to stable storage, whatever it saves. The first operation of a group that
// runs makes the changes of all, in their order, and saves once; the others find themselves done
// when their turn comes. No operation finishes before its change is saved. When anything fails,
// nothing of the group is changed and each operation works for itself.
class ZRMStatisticsSaveGroup : public std::enable_shared_from_this<ZRMStatisticsSaveGroup> {
  public:
    static constexpr std::size_t kMaxOperations = 256;

    // Before the operation goes on the queue, right behind the others of the group. False when the
    // group is full or has run.
    bool join(const std::shared_ptr<ZRMStatisticBaseOperation>& operation);

    // Only the first call has an effect.
    void run();

  private:
    using Operations = std::vector<std::shared_ptr<ZRMStatisticBaseOperation>>;

    static void change(const Operations& operations, ZRMStatisticsContext& context);

    std::mutex mutex_;
    bool isClosed_ = false;
    std::vector<std::weak_ptr<ZRMStatisticBaseOperation>> operations_;
};
