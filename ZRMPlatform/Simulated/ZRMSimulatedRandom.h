// Random bytes that repeat from run to run.
#pragma once

#include <cstdint>
#include <random>
#include <span>
#include <utility>

#include "ZRMPlatform/Ports/Values/ZRMData.h"
#include "ZRMPlatform/Ports/ZRMRandom.h"

// Goes on over restarts of the process.
class ZRMSimulatedRandom final : public ZRMRandom {
  public:
    void fill(std::span<std::uint8_t> bytes) override;

    void setSeed(std::uint64_t seed) { engine_.seed(seed); }
    // From now on every fill repeats these bytes; none ends that.
    void setFixed(ZRMData bytes) { fixed_ = std::move(bytes); }

  private:
    std::mt19937_64 engine_{1};
    ZRMData fixed_;
};
