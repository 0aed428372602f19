// The command line of zrm-simulation.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

struct ZRMSimulationOptions {
    std::uint64_t seed = 1;       // of the first run
    std::uint64_t seeds = 1;      // runs, each with the next seed
    std::uint64_t steps = 20000;  // of each run
    std::uint64_t seconds = 0;    // go on with further seeds until so much time has passed
    bool flood = false;           // fill the queue over its limit in the middle of each run
    bool twice = false;           // run each seed twice and compare
    bool history = false;         // on a failure, show everything that happened
};

// Absent when the program is to end with the code at once: help, or wrong usage (2).
std::optional<ZRMSimulationOptions> zrm_simulationOptions(int count, const char* const* arguments,
                                                          int& exitCode);
