// URLs: parts agree with the whole, and the HTTP check keeps to its limits and disregards case.
#include "Fuzz/ZRMFuzz.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSRegularExpression/NSRegularExpression+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSURL/NSURL+ZRMCoreKit.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.h"

namespace {

std::string withSwappedCase(std::string_view text) {
    std::string swapped(text);
    for (auto& character : swapped) {
        if ((character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z')) {
            character = static_cast<char>(character ^ 0x20);
        }
    }
    return swapped;
}

void checkUrl(std::string_view text, const ZRMUrl& url) {
    ZRM_FUZZ_ASSERT(url.absoluteString() == text);
    ZRM_FUZZ_ASSERT(ZRMUrl::fromText(url.absoluteString()) == url);
    if (url.scheme()) {
        ZRM_FUZZ_ASSERT(!url.scheme()->empty());
        ZRM_FUZZ_ASSERT(text.starts_with(*url.scheme() + ":"));
    }
    ZRM_FUZZ_ASSERT(!url.host() || (!url.host()->empty() && url.host()->size() <= text.size()));
    if (const auto item = url.queryItem("cid")) {
        ZRM_FUZZ_ASSERT(item->size() < text.size());
        ZRM_FUZZ_ASSERT(zrm_isValidUtf8(*item));
    }
    if (zrm_isValidHttpUrl(url)) {
        ZRM_FUZZ_ASSERT(zrm_isValidHttpUrlString(text));
        ZRM_FUZZ_ASSERT(zrm_utf16Length(text) <= 2000);
        ZRM_FUZZ_ASSERT(zrm_utf16Length(url.host().value_or("")) < 256);
    }
}

}  // namespace

void zrm_fuzz(std::span<const std::uint8_t> input) {
    const auto text = zrm_textOfInput(input);
    const bool isValid = zrm_isValidHttpUrlString(text);
    ZRM_FUZZ_ASSERT(isValid == zrm_isValidHttpUrlString(withSwappedCase(text)));
    // Of a longer text ICU might not hold all the alternatives.
    if (text.size() < 4096) {
        ZRM_FUZZ_ASSERT(isValid == zrm_fullStringMatch(*zrm_httpUrlRegularExpression(), text));
    }
    if (isValid) {
        ZRM_FUZZ_ASSERT(text.find_first_of(" \n\r\t@|\"<>[]{}!*()^`") == std::string_view::npos);
        ZRM_FUZZ_ASSERT(text.find('.') != std::string_view::npos);
        ZRM_FUZZ_ASSERT(zrm_isValidHttpUrlString(std::string(text) + "/"));
    }
    if (const auto url = ZRMUrl::fromText(text)) {
        checkUrl(text, *url);
    }
}
