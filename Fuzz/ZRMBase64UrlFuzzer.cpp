// base64url: every payload survives the way out and back, and no text is decoded beyond its length.
#include <algorithm>

#include "Fuzz/ZRMFuzz.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"

namespace {

void checkPayload(std::span<const std::uint8_t> payload) {
    const auto base64 = zrm_base64String(payload);
    ZRM_FUZZ_ASSERT(base64.size() == (payload.size() + 2) / 3 * 4);
    const auto base64Url = zrm_base64UrlFromBase64String(base64);
    ZRM_FUZZ_ASSERT(base64Url.find_first_of("+/=") == std::string::npos);
    const auto decoded = zrm_dataFromBase64String(zrm_base64FromBase64UrlString(base64Url));
    ZRM_FUZZ_ASSERT(decoded && std::ranges::equal(*decoded, payload));
}

void checkText(std::string_view text) {
    const auto padded = zrm_base64FromBase64UrlString(text);
    ZRM_FUZZ_ASSERT(padded.size() == text.size() + text.size() % 4);
    ZRM_FUZZ_ASSERT(padded.find_first_of("-_") == std::string::npos);

    const auto stripped = zrm_base64UrlFromBase64String(text);
    ZRM_FUZZ_ASSERT(zrm_base64UrlFromBase64String(stripped) == stripped);

    const auto strict = zrm_dataFromBase64String(text);
    const auto lenient = zrm_dataFromBase64String(text, ZRMBase64Decoding::IgnoreUnknownCharacters);
    if (strict) {
        ZRM_FUZZ_ASSERT(lenient == strict);
        ZRM_FUZZ_ASSERT(strict->size() <= text.size() / 4 * 3 + 2);
        ZRM_FUZZ_ASSERT(zrm_dataFromBase64String(zrm_base64String(*strict)) == strict);
    }
    if (lenient) {
        ZRM_FUZZ_ASSERT(zrm_dataFromBase64String(zrm_base64String(*lenient)) == lenient);
    }
}

}  // namespace

void zrm_fuzz(std::span<const std::uint8_t> input) {
    checkPayload(input);
    checkText(zrm_textOfInput(input));
}
