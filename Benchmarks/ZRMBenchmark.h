// What a benchmark is: code that measures and reports rows.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "Benchmarks/ZRMFigure.h"

struct ZRMBenchmark {
    const char* name;  // what --only selects by
    std::function<ZRMFigures()> measure;
};

// All there are, in the order in which they run. `kills`: how often a host is killed at each speed.
std::vector<ZRMBenchmark> zrm_benchmarks(int kills);

// Seconds that the work takes: the median of `runs` runs, on the uptime clock.
double zrm_medianSeconds(int runs, const std::function<void()>& work);

// The most heap bytes that were in use at once while the work ran, above those in use before.
std::size_t zrm_peakHeapBytes(const std::function<void()>& work);
