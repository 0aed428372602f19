#include "ZRMPlatform/Linux/ZRMLinuxExecutor.h"

#include <map>

#include <sys/syscall.h>
#include <unistd.h>

#include "ZRMPlatform/Linux/ZRMLinuxCondition.h"
#include "ZRMPlatform/Linux/ZRMLinuxQueue.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

namespace {

// The queues that there is one of in a process; never destroyed, as their threads are not.
struct SharedQueues {
    ZRMMutex mutex;
    std::map<ZRMQualityOfService, std::shared_ptr<ZRMQueue>> concurrent ZRM_GUARDED_BY(mutex);
    std::shared_ptr<ZRMQueue> main ZRM_GUARDED_BY(mutex);
};

SharedQueues& sharedQueues() {
    static auto* const queues = new SharedQueues;
    return *queues;
}

}  // namespace

ZRMLinuxExecutor::ZRMLinuxExecutor(std::shared_ptr<ZRMQueue> mainQueue)
    : hostMainQueue_(std::move(mainQueue)) {}

std::shared_ptr<ZRMQueue> ZRMLinuxExecutor::makeSerialQueue(std::string label,
                                                            ZRMQualityOfService) {
    return std::make_shared<ZRMLinuxQueue>(std::move(label), zrm_makeSerialLane());
}

std::shared_ptr<ZRMQueue> ZRMLinuxExecutor::concurrentQueue(ZRMQualityOfService qos) {
    auto& queues = sharedQueues();
    const ZRMLockGuard lock(queues.mutex);
    auto& queue = queues.concurrent[qos];
    if (!queue) {
        queue = std::make_shared<ZRMLinuxQueue>(
            "concurrent." + std::to_string(static_cast<int>(qos)), zrm_concurrentLane());
    }
    return queue;
}

std::shared_ptr<ZRMQueue> ZRMLinuxExecutor::mainQueue() {
    if (hostMainQueue_) {
        return hostMainQueue_;
    }
    auto& queues = sharedQueues();
    const ZRMLockGuard lock(queues.mutex);
    if (!queues.main) {
        queues.main = std::make_shared<ZRMLinuxQueue>("main", zrm_makeThreadLane("zrm-main"));
    }
    return queues.main;
}

std::uint64_t ZRMLinuxExecutor::currentThreadIdentifier() const {
    return static_cast<std::uint64_t>(::syscall(SYS_gettid));
}

std::unique_ptr<ZRMCondition> ZRMLinuxExecutor::makeCondition() {
    return std::make_unique<ZRMLinuxCondition>();
}
