// Unpredictable bytes.
#pragma once

#include <cstdint>
#include <span>

class ZRMRandom {
  public:
    virtual ~ZRMRandom() = default;
    // Fills the whole span from a cryptographic source. From any thread.
    virtual void fill(std::span<std::uint8_t> bytes) = 0;
};
