// Addresses as the fingerprint tells of them: by digest and by their first three bytes. From any
// thread.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "ZRMPlatform/Ports/ZRMDigests.h"

struct ZRMFingerprintAddress {
    std::string hash;              // as zrm_fingerprintHash() makes it
    std::uint32_t firstThree = 0;  // bytes, the first one lowest

    friend bool operator==(const ZRMFingerprintAddress&, const ZRMFingerprintAddress&) = default;
};

// SHA-256 in hexadecimal; empty when the digest is not to be had.
[[nodiscard]] std::string zrm_fingerprintHash(ZRMDigests& digests,
                                              std::span<const std::uint8_t> bytes);

// Nothing of fewer than 4 bytes.
[[nodiscard]] ZRMFingerprintAddress zrm_fingerprintAddress(ZRMDigests& digests,
                                                           std::span<const std::uint8_t> bytes);

// Of an address written in hexadecimal. What is hashed are its digits as lower-case text, not the
// bytes they stand for, because servers compare with digests that were made so.
[[nodiscard]] ZRMFingerprintAddress zrm_fingerprintMacAddress(
    ZRMDigests& digests, const std::optional<std::string>& text);

// Of the text as it stands; empty without one.
[[nodiscard]] std::string zrm_fingerprintBssidHash(ZRMDigests& digests,
                                                   const std::optional<std::string>& bssid);
