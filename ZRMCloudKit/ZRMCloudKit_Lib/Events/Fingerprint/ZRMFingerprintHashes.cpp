#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintHashes.h"

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"

namespace {

// The digits alone, lower-case.
ZRMData hexadecimalDigits(std::string_view text) {
    ZRMData digits;
    for (const char each : text) {
        const auto byte = static_cast<std::uint8_t>(each);
        if ((each >= '0' && each <= '9') || (each >= 'a' && each <= 'f')) {
            digits.push_back(byte);
        } else if (each >= 'A' && each <= 'F') {
            digits.push_back(static_cast<std::uint8_t>(byte - 'A' + 'a'));
        }
    }
    return digits;
}

}  // namespace

std::string zrm_fingerprintHash(ZRMDigests& digests, std::span<const std::uint8_t> bytes) {
    const auto hash = zrm_hashSHA256(digests, bytes);
    return hash ? zrm_hexString(*hash) : std::string();
}

ZRMFingerprintAddress zrm_fingerprintAddress(ZRMDigests& digests,
                                             std::span<const std::uint8_t> bytes) {
    constexpr std::size_t kFirst = 3;
    if (bytes.size() <= kFirst) {
        return {};
    }
    const auto firstThree =
        std::uint32_t{bytes[0]} | std::uint32_t{bytes[1]} << 8U | std::uint32_t{bytes[2]} << 16U;
    return {zrm_fingerprintHash(digests, bytes), firstThree};
}

ZRMFingerprintAddress zrm_fingerprintMacAddress(ZRMDigests& digests,
                                                const std::optional<std::string>& text) {
    return zrm_fingerprintAddress(digests, hexadecimalDigits(text.value_or("")));
}

std::string zrm_fingerprintBssidHash(ZRMDigests& digests, const std::optional<std::string>& bssid) {
    return bssid && !bssid->empty() ? zrm_fingerprintHash(digests, zrm_dataFromText(*bssid))
                                    : std::string();
}
