// Operations that wait one behind the other and share one save.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "ZRMPlatform/Ports/ZRMMutex.h"
#include "ZRMStatistics/ZRMStatistics_Lib/Operations/ZRMStatisticBaseOperation.h"

// A save costs a write to stable storage, whatever it saves. A group makes the changes of all its
// operations, in their order, and saves once; then each operation runs and finds itself done. No
// operation finishes before its change is saved. When anything fails, nothing of the group is
// changed and each operation works for itself.
class ZRMStatisticsSaveGroup {
  public:
    static constexpr std::size_t kMaxOperations = 256;

    // From any thread. False when the group is full or has run.
    bool join(const std::shared_ptr<ZRMStatisticBaseOperation>& operation);

    // Every operation has finished when this returns; how many that were. Only the first call has
    // an effect.
    std::size_t run();

  private:
    using Operations = std::vector<std::shared_ptr<ZRMStatisticBaseOperation>>;

    static void change(const Operations& operations);

    ZRMMutex mutex_;
    bool isClosed_ ZRM_GUARDED_BY(mutex_) = false;
    Operations operations_ ZRM_GUARDED_BY(mutex_);
};
