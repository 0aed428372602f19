// Message digests.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "ZRMPlatform/Ports/Values/ZRMData.h"

enum class ZRMDigestAlgorithm { Md5, Sha1, Sha256 };

// A digest that is fed piece by piece; used by one thread at a time.
class ZRMDigestContext {
  public:
    virtual ~ZRMDigestContext() = default;
    virtual void update(std::span<const std::uint8_t> bytes) = 0;
    // Once, after the last update: 16, 20 or 32 bytes, or absent when the primitive failed.
    virtual std::optional<ZRMData> finish() = 0;
};

class ZRMDigests {
  public:
    virtual ~ZRMDigests() = default;
    // Absent when the algorithm is not to be had (a hardened crypto library may refuse MD5).
    virtual std::unique_ptr<ZRMDigestContext> makeContext(ZRMDigestAlgorithm algorithm) = 0;
};
