// The one source of chance of a simulation run.
#pragma once

#include <cstdint>
#include <random>

class ZRMSimulationRandom {
  public:
    explicit ZRMSimulationRandom(std::uint64_t seed) : engine_(seed) {}

    // 0 to bound - 1; the bound is at least 1. The remainder's bias does not matter here.
    std::uint64_t below(std::uint64_t bound) { return engine_() % bound; }
    bool oneIn(std::uint64_t chances) { return below(chances) == 0; }
    double between(double low, double high) {
        return low + (high - low) * static_cast<double>(below(1'000'001)) / 1'000'000;
    }

  private:
    std::mt19937_64 engine_;
};
