// How the library reads the host's configuration.
#pragma once

#include <cstdint>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Logger/ZRMLogger.h"
#include "ZRMMobileKit/ZRMMobileServiceConfiguration.h"

// Public 0 is internal 0 ("VER"), public 1 is internal 1 ("ERR"); any other number counts as 1.
[[nodiscard]] constexpr ZRMLogLevel internalLogLevelFrom(std::uint64_t publicLogLevel) {
    return publicLogLevel == ZRMMobileServiceLogLevelVerbose ? kZRMLogLevelVerbose
                                                             : kZRMLogLevelError;
}
