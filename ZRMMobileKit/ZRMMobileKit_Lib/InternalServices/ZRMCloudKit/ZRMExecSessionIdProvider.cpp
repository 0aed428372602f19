#include "ZRMMobileKit/ZRMMobileKit_Lib/InternalServices/ZRMCloudKit/ZRMExecSessionIdProvider.h"

#include "ZRMCoreKit/ZRMCoreKit_Lib/Uuid/ZRMUuid.h"

ZRMExecSessionIdProvider::ZRMExecSessionIdProvider(double execSessionTimeout,
                                                   std::shared_ptr<ZRMExecSessionIdStorage> storage,
                                                   std::shared_ptr<ZRMClock> clock,
                                                   std::shared_ptr<ZRMRandom> random)
    : execSessionTimeout_(execSessionTimeout),
      storage_(std::move(storage)),
      clock_(std::move(clock)),
      random_(std::move(random)) {}

std::string ZRMExecSessionIdProvider::execSessionId() {
    std::call_once(once_, [this] { execSessionId_ = provideExecSessionId(); });
    return execSessionId_;
}

std::string ZRMExecSessionIdProvider::provideExecSessionId() {
    const auto now = clock_->now();
    auto identifier = storage_->execSessionId();
    if (!identifier || now.secondsSince1970 > storage_->execSessionIdRefreshTimestamp()) {
        identifier = zrm_makeUuidText(*random_);
        storage_->setExecSessionId(*identifier);
    }
    storage_->setExecSessionIdRefreshTimestamp(
        now.addingSeconds(execSessionTimeout_).secondsSince1970);
    return *identifier;
}
