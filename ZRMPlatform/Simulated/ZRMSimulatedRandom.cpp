#include "ZRMPlatform/Simulated/ZRMSimulatedRandom.h"

#include <cstddef>

void ZRMSimulatedRandom::fill(std::span<std::uint8_t> bytes) {
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        bytes[index] = fixed_.empty() ? static_cast<std::uint8_t>(engine_() >> 56)
                                      : fixed_[index % fixed_.size()];
    }
}
