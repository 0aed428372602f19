// Random bytes from the kernel.
#pragma once

#include "ZRMPlatform/Ports/ZRMRandom.h"

class ZRMLinuxRandom : public ZRMRandom {
  public:
    void fill(std::span<std::uint8_t> bytes) override;
};
