#include "ZRMCoreKit/ZRMCoreKit_Lib/Uuid/ZRMUuid.h"

#include <boost/uuid/uuid.hpp>
#include <boost/uuid/uuid_io.hpp>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"

std::string zrm_makeUuidText(ZRMRandom& random) {
    boost::uuids::uuid uuid;
    random.fill(uuid.data);
    uuid.data[6] = static_cast<std::uint8_t>((uuid.data[6] & 0x0FU) | 0x40U);  // version 4
    uuid.data[8] = static_cast<std::uint8_t>((uuid.data[8] & 0x3FU) | 0x80U);  // RFC 4122 variant
    return zrm_uppercasedText(boost::uuids::to_string(uuid));
}
