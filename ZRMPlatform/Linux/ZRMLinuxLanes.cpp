#include "ZRMPlatform/Linux/ZRMLinuxLanes.h"

#include <atomic>

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/strand.hpp>

#include "ZRMPlatform/Linux/ZRMLinuxThread.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

namespace {

using WorkContext = boost::asio::io_context;

// Tasks may block on files and keychains; with four workers a few of them do not hold up the rest.
constexpr int kPoolThreads = 4;

// Threads that serve one context, and the context, which outlive everything: tasks may be under way
// while the process exits, and exit must not wait for them. A thread that the system refuses is
// asked for again with the next task.
class Workers {
  public:
    Workers(const char* threadName, int threads)
        : name_(threadName), context_(threads), missing_(threads) {}

    void ensureStarted() {
        if (missing_.load(std::memory_order_acquire) == 0) {
            return;
        }
        const ZRMLockGuard lock(starting_);
        while (missing_ > 0 && zrm_startThread(name_, [this] { context_.run(); })) {
            --missing_;
        }
    }

    WorkContext& context() { return context_; }

  private:
    const char* name_;
    WorkContext context_;
    boost::asio::executor_work_guard<WorkContext::executor_type> endless_{context_.get_executor()};
    ZRMMutex starting_;
    std::atomic<int> missing_;
};

Workers& pool() {
    static auto* const workers = new Workers("zrm-worker", kPoolThreads);
    return *workers;
}

template <class Executor>
ZRMLinuxLane laneOver(Workers& workers, Executor executor) {
    return [&workers, executor](ZRMTask task) {
        workers.ensureStarted();
        boost::asio::post(executor, std::move(task));
    };
}

}  // namespace

ZRMLinuxLane zrm_concurrentLane() {
    return laneOver(pool(), pool().context().get_executor());
}

ZRMLinuxLane zrm_makeSerialLane() {
    return laneOver(pool(), boost::asio::make_strand(pool().context()));
}

ZRMLinuxLane zrm_makeThreadLane(const char* threadName) {
    auto* const workers = new Workers(threadName, 1);  // kept by the lane, for the process's life
    return laneOver(*workers, workers->context().get_executor());
}
