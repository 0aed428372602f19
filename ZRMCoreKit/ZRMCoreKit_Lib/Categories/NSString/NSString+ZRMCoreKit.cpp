#include <algorithm>
#include <array>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.h"

namespace {

constexpr std::string_view kRandomAlphabet =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";

}  // namespace

std::string zrm_documentDirectory(const ZRMDirectories& directories) {
    return directories.documents();
}

std::string zrm_applicationSupportDirectory(const ZRMDirectories& directories) {
    return directories.applicationSupport();
}

std::optional<std::string> zrm_currentApplicationSupportDirectory(const ZRMDirectories& directories,
                                                                  const ZRMMainBundle& mainBundle) {
    const auto identifier = mainBundle.identifier();
    if (!identifier || identifier->empty()) {
        return std::nullopt;
    }
    return zrm_applicationSupportDirectory(directories) + "/" + *identifier;
}

std::string zrm_base64FromBase64UrlString(std::string_view text) {
    std::string base64(text);
    std::ranges::replace(base64, '-', '+');
    std::ranges::replace(base64, '_', '/');
    base64.append(text.size() % 4, '=');
    return base64;
}

std::string zrm_base64UrlFromBase64String(std::string_view text) {
    std::string base64Url(text);
    std::ranges::replace(base64Url, '+', '-');
    std::ranges::replace(base64Url, '/', '_');
    std::erase(base64Url, '=');
    return base64Url;
}

std::string zrm_stringForLogLevel(ZRMLogLevel level) {
    switch (level) {
        case kZRMLogLevelVerbose:
            return "VER";
        case kZRMLogLevelError:
            return "ERR";
        default:
            return "N/A";
    }
}

std::string zrm_randomStringWithLength(ZRMRandom& random, std::size_t length) {
    // Bytes from the last, incomplete round of the alphabet would favour its first letters.
    constexpr std::size_t kUsableBytes = 256 - 256 % kRandomAlphabet.size();
    std::string text;
    text.reserve(length);
    std::array<std::uint8_t, 64> bytes{};
    while (text.size() < length) {
        random.fill(bytes);
        for (const auto byte : bytes) {
            if (byte < kUsableBytes && text.size() < length) {
                text.push_back(kRandomAlphabet[byte % kRandomAlphabet.size()]);
            }
        }
    }
    return text;
}
