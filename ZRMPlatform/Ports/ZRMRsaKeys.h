// Raw RSA operations with the PKCS#1 v1.5 padding over a SHA-256 digest (RFC 8017, section 8.2).
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "ZRMPlatform/Ports/Values/ZRMData.h"

// Immutable; may be used from any thread.
class ZRMRsaKey {
  public:
    virtual ~ZRMRsaKey() = default;

    // Bytes of the modulus, which is the length of every signature of this key.
    [[nodiscard]] virtual std::size_t blockSize() const = 0;

    // Signs a 32-byte digest into `signature`, whose size is the room given; on success `length` is
    // what was used. Returns 0, or a status that is not 0 (no private part, room too small).
    virtual std::int32_t signDigest(std::span<const std::uint8_t> digest,
                                    std::span<std::uint8_t> signature,
                                    std::size_t& length) const = 0;

    // Returns 0 when `signature` is the key's signature of the 32-byte digest, else another status.
    // A signature that is not blockSize() long is a mismatch.
    [[nodiscard]] virtual std::int32_t verifyDigest(
        std::span<const std::uint8_t> digest, std::span<const std::uint8_t> signature) const = 0;
};

class ZRMRsaKeys {
  public:
    virtual ~ZRMRsaKeys() = default;
    // From a DER SubjectPublicKeyInfo; absent when it is no RSA key.
    [[nodiscard]] virtual std::shared_ptr<ZRMRsaKey> publicKeyFromDer(const ZRMData& der) const = 0;
    // From a DER PKCS#8 PrivateKeyInfo; absent when it is no RSA key.
    [[nodiscard]] virtual std::shared_ptr<ZRMRsaKey> privateKeyFromDer(
        const ZRMData& der) const = 0;
};
