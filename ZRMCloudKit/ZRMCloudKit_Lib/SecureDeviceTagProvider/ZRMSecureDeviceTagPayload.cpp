#include "ZRMCloudKit/ZRMCloudKit_Lib/SecureDeviceTagProvider/ZRMSecureDeviceTagPayload.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDate/NSDate+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"
#include "ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsPayload.h"

namespace {

constexpr const char* kTagKey = "uuid";
constexpr const char* kIntervalKey = "i";

ZRMError refused(const char* why) {
    return ZRMError::withDescription(kZRMCocoaErrorDomain, kZRMJsonErrorCode, why);
}

std::optional<std::string> textOf(const ZRMDictionary& object, const char* key) {
    const auto* const value = object.if_contains(key);
    return value != nullptr && value->is_string() ? std::optional(std::string(value->get_string()))
                                                  : std::nullopt;
}

// The tag travels as a header's value: with a line break in it no request could be sent any more.
bool canBeAHeader(std::string_view text) {
    return !text.empty() && std::ranges::none_of(text, [](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte < 0x20 || byte == 0x7F;
    });
}

}  // namespace

ZRMResult<ZRMSecureDeviceTagPayload> ZRMSecureDeviceTagPayload::fromJwsPayload(
    std::string_view payload) {
    const auto data = zrm_dataFromJwsPayload(payload);
    if (!data) {
        return data.error();
    }
    const auto object = zrm_jsonObjectFromSignedData(data.value());
    if (!object) {
        return object.error();
    }
    const auto tag = textOf(object.value(), kTagKey);
    if (!tag || !canBeAHeader(*tag)) {
        return refused("The payload has no usable \"uuid\".");
    }
    const auto interval = zrm_timeIntervalFromISO8601DurationString(
        textOf(object.value(), kIntervalKey).value_or(""));
    if (!(interval >= 0)) {
        return refused("The payload has no usable \"i\".");
    }
    return ZRMSecureDeviceTagPayload{zrm_uppercasedText(*tag), interval};
}
