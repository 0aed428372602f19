// The payload of an answer with a device tag, as text and as what stands behind its base64url: what
// is taken can be sent as a header and waited for.
#include <algorithm>
#include <cmath>

#include "Fuzz/ZRMFuzz.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/SecureDeviceTagProvider/ZRMSecureDeviceTagPayload.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"

namespace {

void check(std::string_view payload) {
    const auto read = ZRMSecureDeviceTagPayload::fromJwsPayload(payload);
    if (!read) {
        ZRM_FUZZ_ASSERT(!read.error().localizedDescription().empty());
        return;
    }
    const auto& [tag, interval] = read.value();
    ZRM_FUZZ_ASSERT(!tag.empty());
    ZRM_FUZZ_ASSERT(std::ranges::none_of(tag, [](char letter) {
        const auto byte = static_cast<unsigned char>(letter);
        return byte < 0x20 || byte == 0x7F;
    }));
    ZRM_FUZZ_ASSERT(std::isfinite(interval) && interval >= 0);
}

}  // namespace

void zrm_fuzz(std::span<const std::uint8_t> input) {
    check(zrm_textOfInput(input));
    check(zrm_base64UrlFromBase64String(zrm_base64String(input)));
}
