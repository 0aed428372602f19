// What a benchmark is: code that measures and reports rows.
#pragma once

#include <functional>
#include <string>
#include <vector>

// One figure, with what it must reach.
struct ZRMFigure {
    enum class Must { BeAtMost, BeAtLeast };

    std::string name;
    double value = 0;
    std::string unit;
    double target = 0;
    Must must = Must::BeAtMost;

    [[nodiscard]] bool isMet() const {
        return must == Must::BeAtMost ? value <= target : value >= target;
    }
};

using ZRMFigures = std::vector<ZRMFigure>;

struct ZRMBenchmark {
    const char* name;  // what --only selects by
    std::function<ZRMFigures()> measure;
};

// All there are, in the order in which they run.
std::vector<ZRMBenchmark> zrm_benchmarks();

// Seconds that the work takes: the median of `runs` runs, on the uptime clock.
double zrm_medianSeconds(int runs, const std::function<void()>& work);

// The most heap bytes that were in use at once while the work ran, above those in use before.
std::size_t zrm_peakHeapBytes(const std::function<void()>& work);
