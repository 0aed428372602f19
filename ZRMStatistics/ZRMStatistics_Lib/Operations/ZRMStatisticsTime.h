// The time that records of the queue carry.
#pragma once

#include "ZRMCoreKit/ZRMCoreKit_Lib/ServerTime/ZRMServerTimeProvider.h"
#include "ZRMPlatform/Ports/Values/ZRMDate.h"

// Seconds since 1970: the server's time in whole seconds once it is known, else `now`.
[[nodiscard]] double zrm_statisticsTimestamp(const ZRMServerTimeProvider& serverTimeProvider,
                                             ZRMDate now);
