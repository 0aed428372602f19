#include "ZRMCoreKit/ZRMCoreKit_Lib/Uuid/ZRMUuid.h"

#include <array>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"

std::string zrm_makeUuidText(ZRMRandom& random) {
    std::array<std::uint8_t, 16> bytes{};
    random.fill(bytes);
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0FU) | 0x40U);  // version 4
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3FU) | 0x80U);  // RFC 4122 variant
    auto text = zrm_uppercasedText(zrm_hexString(bytes));
    for (const std::size_t hyphen : {8U, 13U, 18U, 23U}) {
        text.insert(hyphen, 1, '-');
    }
    return text;
}
