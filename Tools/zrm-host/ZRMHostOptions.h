// The command line of zrm-host.
#pragma once

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <variant>

#include "ZRMMobileKit/ZRMMobileServiceConfiguration.h"
#include "ZRMPlatform/Linux/ZRMLinuxPlatform.h"

struct ZRMHostOptions {
    ZRMLinuxPlatformOptions platform;  // directories and files as absolute paths
    std::optional<std::string> statisticsUrl;
    std::uint64_t logLevel = ZRMMobileServiceLogLevelErrors;
    bool interactive = false;
};

// The options, or the exit status where there is nothing to run: 0 after --help, 2 after wrong
// usage.
std::variant<ZRMHostOptions, int> zrm_readHostOptions(int argc, const char* const* argv,
                                                      std::ostream& out, std::ostream& err);
