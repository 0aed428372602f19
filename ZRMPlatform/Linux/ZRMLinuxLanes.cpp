#include "ZRMPlatform/Linux/ZRMLinuxLanes.h"

#include <utility>

#include "ZRMPlatform/Linux/ZRMLinuxWorkers.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

namespace {

// Tasks may block on files and keychains; with four workers a few of them do not hold up the rest.
constexpr int kPoolThreads = 4;

ZRMLinuxWorkers& pool() {
    static auto* const workers = new ZRMLinuxWorkers("zrm-worker", kPoolThreads);
    return *workers;
}

// Tasks that run one at a time and in order, on whichever worker is free.
class Sequence : public std::enable_shared_from_this<Sequence> {
  public:
    void post(ZRMTask task) {
        {
            const ZRMLockGuard lock(mutex_);
            waiting_.push_back(std::move(task));
            if (std::exchange(isScheduled_, true)) {
                return;
            }
        }
        schedule();
    }

  private:
    void schedule() {
        pool().post([self = shared_from_this()] { self->run(); });
    }

    // What came up to now; for what comes meanwhile it goes to the end of the pool's line.
    void run() {
        {
            const ZRMLockGuard lock(mutex_);
            running_.swap(waiting_);
        }
        for (auto& task : running_) {
            std::exchange(task, nullptr)();
        }
        running_.clear();
        {
            const ZRMLockGuard lock(mutex_);
            if (waiting_.empty()) {
                isScheduled_ = false;
                return;
            }
        }
        schedule();
    }

    ZRMMutex mutex_;
    std::vector<ZRMTask> waiting_ ZRM_GUARDED_BY(mutex_);
    bool isScheduled_ ZRM_GUARDED_BY(mutex_) = false;
    std::vector<ZRMTask> running_;  // touched by the one run that is under way
};

}  // namespace

ZRMLinuxLane zrm_concurrentLane() {
    return [&workers = pool()](ZRMTask task) { workers.post(std::move(task)); };
}

ZRMLinuxLane zrm_makeSerialLane() {
    return [sequence = std::make_shared<Sequence>()](ZRMTask task) {
        sequence->post(std::move(task));
    };
}

ZRMLinuxLane zrm_makeThreadLane(const char* threadName) {
    auto* const workers = new ZRMLinuxWorkers(threadName, 1);  // kept by the lane, for ever
    return [workers](ZRMTask task) { workers->post(std::move(task)); };
}
