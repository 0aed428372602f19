// The signals that the host feeds to the device.
#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct ZRMHostSignal {
    static constexpr std::size_t kAny = std::numeric_limits<std::size_t>::max();

    std::string_view name;
    std::size_t fewestArguments;
    std::size_t mostArguments;
    std::string_view arguments;
    std::string_view meaning;
    // Whether the arguments could be read and the library took them.
    bool (*feed)(const std::vector<std::string>& arguments);
};

// Feeds a signal: its name, then its arguments. Absent when that was done, otherwise why not.
std::optional<std::string> zrm_feedHostSignal(const std::vector<std::string>& words);

// A line for each signal.
std::string zrm_hostSignalsHelp();
