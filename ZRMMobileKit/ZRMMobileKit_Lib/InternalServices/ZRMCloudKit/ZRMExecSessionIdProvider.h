// The identifier of the current execution session.
#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "ZRMMobileKit/ZRMMobileKit_Lib/Categories/NSUserDefaults/NSUserDefaults+ZRMMobileKit.h"
#include "ZRMPlatform/Ports/ZRMClock.h"
#include "ZRMPlatform/Ports/ZRMRandom.h"

// A session goes on as long as no two starts of the library are further apart than the timeout. May
// be used from any thread.
class ZRMExecSessionIdProvider {
  public:
    // The timeout is in seconds.
    ZRMExecSessionIdProvider(double execSessionTimeout,
                             std::shared_ptr<ZRMExecSessionIdStorage> storage,
                             std::shared_ptr<ZRMClock> clock, std::shared_ptr<ZRMRandom> random);

    // A UUID in upper case. Found or made on the first call, which counts as the start; later calls
    // return the same.
    [[nodiscard]] std::string execSessionId();

  private:
    [[nodiscard]] std::string provideExecSessionId();

    const double execSessionTimeout_;
    const std::shared_ptr<ZRMExecSessionIdStorage> storage_;
    const std::shared_ptr<ZRMClock> clock_;
    const std::shared_ptr<ZRMRandom> random_;
    std::once_flag once_;
    std::string execSessionId_;
};
