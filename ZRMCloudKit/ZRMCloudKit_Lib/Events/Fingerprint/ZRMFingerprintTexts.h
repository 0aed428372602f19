// Values that the fingerprint tells as texts of its own kind. Pure; from any thread.
#pragma once

#include <string>
#include <string_view>

#include "ZRMPlatform/Ports/Values/ZRMDate.h"
#include "ZRMPlatform/Ports/ZRMHardware.h"

// The name's bytes, each combined by exclusive or with a byte of the build's 8-byte key, which is
// repeated; in lower-case hexadecimal.
[[nodiscard]] std::string zrm_fingerprintDeviceNameXor(std::string_view name);

// Seconds since 1970 in the fewest decimal digits that read back as the same double, without an
// exponent: "1767225661.5", "1767225661". Empty for a date that is not finite.
[[nodiscard]] std::string zrm_fingerprintSecondsText(ZRMDate date);

// "17.1.2".
[[nodiscard]] std::string zrm_fingerprintVersionText(const ZRMOperatingSystemVersion& version);
