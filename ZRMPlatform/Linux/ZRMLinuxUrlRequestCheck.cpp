#include <algorithm>
#include <memory>

#include <curl/curl.h>

#include "ZRMPlatform/Linux/ZRMLinuxIpAddress.h"
#include "ZRMPlatform/Linux/ZRMLinuxUrlErrors.h"
#include "ZRMPlatform/Linux/ZRMLinuxUrlTransfer.h"

namespace {

constexpr std::string_view kMarks = "!#$%&'*+-.^_`|~";

// The characters of a method or a header's name (RFC 9110, section 5.6.2).
bool isToken(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char character) {
        return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'Z') ||
               (character >= 'a' && character <= 'z') ||
               kMarks.find(character) != std::string_view::npos;
    });
}

// A line break inside a value would begin another header.
bool isHeaderValue(std::string_view text) {
    return std::ranges::none_of(text, [](char character) {
        return character == '\r' || character == '\n' || character == '\0';
    });
}

ZRMError refused(const std::string& text) {
    return ZRMError::withDescription(kZRMUrlErrorDomain, ZRMUrlErrorUnknown, text);
}

std::optional<ZRMUrlErrorCode> refusalOfUrl(const std::string& url) {
    const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> parts(curl_url(), &curl_url_cleanup);
    if (url.find('\0') != std::string::npos ||
        curl_url_set(parts.get(), CURLUPART_URL, url.c_str(), CURLU_NON_SUPPORT_SCHEME) !=
            CURLUE_OK) {
        return ZRMUrlErrorBadUrl;
    }
    char* text = nullptr;
    if (curl_url_get(parts.get(), CURLUPART_SCHEME, &text, 0) != CURLUE_OK) {
        return ZRMUrlErrorBadUrl;
    }
    const std::unique_ptr<char, decltype(&curl_free)> owned(text, &curl_free);
    const auto scheme = zrm_lowerHostName(text);
    return scheme == "http" || scheme == "https" ? std::nullopt
                                                 : std::optional(ZRMUrlErrorUnsupportedUrl);
}

}  // namespace

std::optional<ZRMError> zrm_checkUrlRequest(const ZRMUrlRequest& request) {
    if (const auto code = refusalOfUrl(request.url)) {
        return zrm_urlError(*code);
    }
    if (!isToken(request.method)) {
        return refused("The request's method is malformed.");
    }
    for (const auto& [name, value] : request.headers.fields()) {
        if (!isToken(name) || !isHeaderValue(value)) {
            return refused("A header of the request is malformed.");
        }
    }
    return std::nullopt;
}
