#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSTimer/NSTimer+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/RunLoop/ZRMRunLoop.h"

std::shared_ptr<ZRMTimer> zrm_scheduledTimerWithTimeInterval(
    const std::shared_ptr<ZRMExecutor>& executor, double intervalSeconds, bool repeats,
    std::function<void()> callback) {
    auto holder = ZRMBlockHolder::holderWithBlock(std::move(callback));
    auto timer = std::make_shared<ZRMTimer>(intervalSeconds, repeats, holder,
                                            ZRMTimer::UserInfo{{kZRMTimerBlockHolderKey, holder}});
    ZRMRunLoop::currentRunLoop(executor)->addTimer(timer);
    return timer;
}
