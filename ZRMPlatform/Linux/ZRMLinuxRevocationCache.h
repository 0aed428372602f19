// Answers about certificates, kept as long as they hold.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>

#include "ZRMPlatform/Linux/ZRMLinuxRevocationAnswer.h"
#include "ZRMPlatform/Linux/ZRMLinuxX509.h"
#include "ZRMPlatform/Ports/ZRMMutex.h"

// In memory only, the last to run out first of all when it is full. May be used from any thread.
class ZRMLinuxRevocationCache {
  public:
    static constexpr std::size_t kMaximumEntries = 256;

    // An answer about this very certificate that holds at `now`, or one of status NoAnswer.
    [[nodiscard]] ZRMLinuxRevocationAnswer find(const X509* certificate, ZRMDate now) const;
    // Answers of status NoAnswer are not kept.
    void keep(const X509* certificate, const ZRMLinuxRevocationAnswer& answer);

  private:
    using Fingerprint = std::array<std::uint8_t, 32>;  // SHA-256

    // Absent when the digest is not to be had.
    static std::optional<Fingerprint> fingerprintOf(const X509* certificate);

    mutable ZRMMutex mutex_;
    std::map<Fingerprint, ZRMLinuxRevocationAnswer> answers_ ZRM_GUARDED_BY(mutex_);
};
