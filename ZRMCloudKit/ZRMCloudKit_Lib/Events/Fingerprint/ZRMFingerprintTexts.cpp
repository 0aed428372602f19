#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/Fingerprint/ZRMFingerprintTexts.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMGenerated/ZRMFingerprintBuildSettings.h"
#include "ZRMPlatform/Ports/Values/ZRMData.h"

std::string zrm_fingerprintDeviceNameXor(std::string_view name) {
    constexpr const auto& kKey = kZRMFingerprintStatisticDeviceNameXorKey;
    return zrm_hexString(zrm_xorWithBytes(zrm_dataFromText(name), kKey.data(), kKey.size()));
}

std::string zrm_fingerprintSecondsText(ZRMDate date) {
    if (!std::isfinite(date.secondsSince1970)) {
        return {};
    }
    // The smallest numbers take the most digits: "-0." and all the zeros.
    using Limits = std::numeric_limits<double>;
    std::array<char, 3 + Limits::max_digits10 - Limits::min_exponent10 + Limits::digits> text{};
    const auto* const end = std::to_chars(text.data(), text.data() + text.size(),
                                          date.secondsSince1970, std::chars_format::fixed)
                                .ptr;
    return std::string(text.data(), static_cast<std::size_t>(end - text.data()));
}

std::string zrm_fingerprintVersionText(const ZRMOperatingSystemVersion& version) {
    return std::to_string(version.major) + "." + std::to_string(version.minor) + "." +
           std::to_string(version.patch);
}
